// The data files, which are part of the player; there are no others.
#include "platform/files.h"

#include <iterator>

#include "platform/program_folder.h"

namespace numalink {

namespace {

constexpr unsigned char tokenTable[] = {
#embed "casio.ptt"
};
constexpr unsigned char largeFont[] = {
#embed "large.cft"
};
constexpr unsigned char smallFont[] = {
#embed "small.cft"
};

struct DataFile {
    std::string_view name;
    ByteView bytes;
};
const DataFile dataFiles[] = {{"casio.ptt", tokenTable}, {"large.cft", largeFont}, {"small.cft", smallFont}};

const std::string noFolder;

}  // namespace

FileResult readWholeFile(const std::string &path, Bytes &bytes, std::uint64_t) {
    bytes.clear();
    for (const DataFile &file : dataFiles) {
        if (file.name != path) continue;
        bytes.assign(file.bytes.begin(), file.bytes.end());
        return FileResult::done;
    }
    return FileResult::missing;
}

FileResult writeWholeFile(const std::string &, ByteView, const std::string &) { return FileResult::denied; }
bool makeFolders(std::string) { return false; }

std::string dataPath(const std::string &name) { return name; }
const std::string &settingsFolder() { return noFolder; }

}  // namespace numalink
