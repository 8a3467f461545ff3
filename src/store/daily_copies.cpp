#include "store/daily_copies.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "platform/clock.h"
#include "platform/files.h"
#include "platform/program_folder.h"
#include "store/item_store.h"

namespace numalink {

namespace {

constexpr std::uint64_t libraryLimit = UINT32_MAX;  // bytes; offsets in the library have 32 bits
constexpr std::string_view nameStart = "storage-", nameEnd = ".dat";
constexpr std::size_t nameLength = nameStart.size() + 10 + nameEnd.size();  // with YYYY-MM-DD

// By rising date.
std::vector<std::string> copiesIn(const std::string &folder) {
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        const std::string name = entry->path().filename().string();
        if (name.size() == nameLength && name.starts_with(nameStart) && name.ends_with(nameEnd)) names.push_back(name);
        entry.increment(error);
    }
    std::ranges::sort(names);
    return names;
}

bool sameBytes(const std::string &path, const std::string &other) {
    Bytes bytes, otherBytes;
    return readWholeFile(path, bytes, libraryLimit) == FileResult::done &&
           readWholeFile(other, otherBytes, libraryLimit) == FileResult::done && bytes == otherBytes;
}

}  // namespace

std::string dailyCopyFolder() { return libraryFolder() + "backups/"; }

bool keepDailyCopy() {
    if (!storeIsOpen() || storeIsDamaged()) return true;
    const std::string folder = dailyCopyFolder();
    const std::string today = std::string(nameStart) + clockPort.localDate() + std::string(nameEnd);
    std::vector<std::string> names = copiesIn(folder);
    if (std::ranges::find(names, today) != names.end()) return true;
    if (!names.empty() && sameBytes(libraryFolder() + "storage.dat", folder + names.back())) return true;
    if (!makeFolders(folder) || !storeCopyTo(folder + today)) return false;
    names = copiesIn(folder);
    std::error_code error;
    for (std::size_t extra = 0; extra + dailyCopyLimit < names.size(); extra++)
        std::filesystem::remove(folder + names[extra], error);
    return true;
}

}  // namespace numalink
