// A folder of its own for a test, gone with the object, and set as library folder meanwhile.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/bytes.h"
#include "platform/program_folder.h"

namespace numalink {

struct ScratchFolder {
    ScratchFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "numalink-XXXXXX").string();
        path = std::string(mkdtemp(pattern.data())) + "/";
        setLibraryFolder(path);
    }
    ~ScratchFolder() {
        setLibraryFolder(programFolder());
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    void write(const std::string &name, const std::string &content) const {
        std::ofstream(path + name, std::ios::binary) << content;
    }
    std::string read(const std::string &name) const {
        std::ifstream file(path + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::string path;
};

// Stands for the program's folder too, without any of its data files.
struct EmptyProgramFolder : ScratchFolder {
    EmptyProgramFolder() { setProgramFolder(path); }
    ~EmptyProgramFolder() { setProgramFolder(real); }

    const std::string real = programFolder();
};

}  // namespace numalink
