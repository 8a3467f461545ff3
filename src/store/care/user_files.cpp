#include "store/care/user_files.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "platform/files.h"
#include "platform/program_folder.h"
#include "platform/thread_role.h"
#include "store/care/daily_copies.h"
#include "store/file/records.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

namespace fs = std::filesystem;

constexpr std::array programNames = {"casio.ptt", "large.cft",    "small.cft",          "player.html",
                                     "numalink",  "numalink-cli", "numalink-calculator"};

// The library with its journal and copies, and what was being typed when the program ended.
bool isLibraryName(std::string_view name) {
    return name.starts_with("storage.dat") || name.starts_with("settings.xml") ||
           name.starts_with("breakpoints.json") || name == "recent-libraries.txt" || name == "running.log" ||
           (name.starts_with("draft-") && name.ends_with(".txt"));
}

bool isProgramName(std::string_view name) { return std::ranges::find(programNames, name) != programNames.end(); }

bool isAnyName(std::string_view) { return true; }

struct OwnPlace {
    fs::path folder;
    bool (*isOwn)(std::string_view name);
};

// A library behind a link has its journal beside the file itself.
std::vector<OwnPlace> ownPlaces() {
    std::error_code failure;
    const fs::path library = libraryFolder(), program = programFolder(), data = sharedDataFolder();
    std::vector<OwnPlace> places = {
        {library, isLibraryName},          {dailyCopyFolder(), isAnyName}, {library / "moments", isAnyName},
        {program, isLibraryName},          {program, isProgramName},       {program / "Language", isAnyName},
        {settingsFolder(), isLibraryName}, {data, isProgramName},          {data / "Language", isAnyName}};
    const fs::path real = fs::canonical(library / "storage.dat", failure);
    if (!failure) places.push_back({real.parent_path(), isLibraryName});
    return places;
}

// By name also where there is no such file yet: a journal comes and goes.
bool liesIn(const fs::path &path, const OwnPlace &place) {
    const fs::path folder = path.has_parent_path() ? path.parent_path() : ".";
    if (place.isOwn(path.filename().native()) && isSameFile(folder, place.folder)) return true;
    std::error_code failure;
    for (fs::directory_iterator entry(place.folder, failure), end; !failure && entry != end; entry.increment(failure)) {
        const std::string name = entry->path().filename();
        if (place.isOwn(name) && isSameFile(path, entry->path())) return true;
    }
    return false;
}

bool isOwnFile(const std::string &path) {
    return isLibraryFile(path) ||
           std::ranges::any_of(ownPlaces(), [&](const auto &place) { return liesIn(path, place); });
}

bool askReplace(const std::string &path) {
    return tellComposed(Text::exportReplace, wording(Text::exportReplace, {path}), {path}, BoxIcon::warning,
                        BoxButtons::okCancel) == Answer::ok;
}

}  // namespace

bool isLibraryFile(const std::string &path) {
    std::error_code failure;
    if (!fs::is_regular_file(path, failure)) return false;
    char start[sizeof mainSignature] = {};
    std::ifstream(path, std::ios::binary).read(start, sizeof start);
    return std::memcmp(start, mainSignature, sizeof start) == 0;
}

bool userFileIsFree(const std::string &path, bool mayReplace) {
    assertRole(ThreadRole::graphical);
    if (isOwnFile(path)) return failWith(Text::exportOwnFile, {path});
    std::error_code failure;
    if (fs::is_directory(path, failure)) return failWith(Text::fileIsFolder, {path});
    return mayReplace || !fileExists(path) || askReplace(path);
}

bool writeUserFile(const std::string &path, ByteView bytes, bool mayReplace) {
    if (!userFileIsFree(path, mayReplace)) return false;
    const FileResult result = writeWholeFile(path, bytes);
    return result == FileResult::done || failWith(fileTrouble(result), {path});
}

}  // namespace numalink
