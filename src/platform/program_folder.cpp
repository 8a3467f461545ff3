#include "platform/program_folder.h"

#include <filesystem>

namespace numalink {

namespace {

std::string folderOfExecutable() {
    std::error_code failure;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", failure);
    return failure ? "./" : self.parent_path().string() + "/";
}

std::string &programFolderText() {
    static std::string folder = folderOfExecutable();
    return folder;
}

std::string libraryFolderText;

std::string withFinalSlash(const std::string &folder) {
    if (folder.empty()) return "./";
    return folder.back() == '/' ? folder : folder + "/";
}

}  // namespace

const std::string &programFolder() { return programFolderText(); }
void setProgramFolder(const std::string &folder) { programFolderText() = withFinalSlash(folder); }

const std::string &libraryFolder() { return libraryFolderText.empty() ? programFolder() : libraryFolderText; }
void setLibraryFolder(const std::string &folder) { libraryFolderText = withFinalSlash(folder); }

}  // namespace numalink
