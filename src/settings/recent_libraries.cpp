#include "settings/recent_libraries.h"

#include <algorithm>
#include <string_view>

#include "platform/files.h"
#include "platform/program_folder.h"

namespace numalink {

namespace {

constexpr std::uint64_t fileSizeLimit = std::uint64_t{64} * 1024;  // bytes; a path has at most 4,096

std::string listPath() { return settingsFolder() + "recent-libraries.txt"; }

bool isFolderLine(std::string_view line) { return line.starts_with('/') && line.ends_with('/'); }

}  // namespace

std::vector<std::string> recentLibraries() {
    Bytes bytes;
    std::vector<std::string> folders;
    if (readWholeFile(listPath(), bytes, fileSizeLimit) != FileResult::done) return folders;
    std::string_view rest(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    while (!rest.empty() && folders.size() < recentLibraryLimit) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        if (isFolderLine(line) && std::ranges::find(folders, line) == folders.end()) folders.emplace_back(line);
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
    return folders;
}

bool rememberLibrary(const std::string &folder) {
    if (!isFolderLine(folder) || folder.find('\n') != std::string::npos) return false;
    std::vector<std::string> folders = recentLibraries();
    std::erase(folders, folder);
    folders.insert(folders.begin(), folder);
    folders.resize(std::min(folders.size(), recentLibraryLimit));
    std::string file;
    for (const std::string &line : folders) file += line + "\n";
    makeFolders(settingsFolder());
    return writeWholeFile(listPath(), {reinterpret_cast<const std::uint8_t *>(file.data()), file.size()}) ==
           FileResult::done;
}

}  // namespace numalink
