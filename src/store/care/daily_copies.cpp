#include "store/care/daily_copies.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "platform/clock.h"
#include "platform/files.h"
#include "store/file/state.h"
#include "store/item_store.h"

namespace numalink {

namespace {

constexpr std::size_t blockSize = std::size_t{64} * 1024;  // bytes
std::string copyName(const std::string &date) { return "storage-" + date + ".dat"; }

bool holdsSame(int copy) REQUIRES_LOCK(storeLock) {
    const std::int64_t size = storeFileSize();
    if (size < 0 || filePort.size(copy) != size) return false;
    Bytes block(blockSize), other(blockSize);
    for (std::int64_t at = 0; at < size; at += static_cast<std::int64_t>(block.size())) {
        block.resize(static_cast<std::size_t>(std::min<std::int64_t>(blockSize, size - at)));
        other.resize(block.size());
        const auto offset = static_cast<std::uint64_t>(at);
        const bool read =
            storeFileRead(offset, block) && filePort.readAt(copy, offset, other.data(), other.size()) == other.size();
        if (!read || block != other) return false;
    }
    return true;
}

bool isLibraryAsItStands(const std::string &path) {
    bool same = false;
    withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        int copy = -1;
        if (filePort.openLocked(path.c_str(), false, copy) != OpenResult::opened) return Fault::absent;
        same = !storeFileIsBroken() && holdsSame(copy);
        filePort.close(copy);
        return Fault::none;
    });
    return same;
}

bool libraryIsHalfChanged() {
    const HoldLock hold(storeLock);
    return storeFileIsBroken();
}

// Those beyond the limit, never today's. First those of days to come, then the oldest.
void dropCopies(const std::string &folder, const std::string &today) {
    std::vector<std::string> names = dailyCopyNames();
    const std::size_t extra = names.size() - std::min(names.size(), dailyCopyLimit);
    const auto next = std::ranges::upper_bound(names, today);
    std::rotate(names.begin(), next, names.end());
    std::erase(names, today);
    std::error_code error;
    for (std::size_t i = 0; i < std::min(extra, names.size()); i++) std::filesystem::remove(folder + names[i], error);
}

bool makeDailyCopy() {
    const std::string folder = dailyCopyFolder();
    const std::string today = copyName(clockPort.localDate());
    const std::vector<std::string> names = dailyCopyNames();
    if (std::ranges::find(names, today) != names.end()) return true;
    const auto next = std::ranges::upper_bound(names, today);
    if (next != names.begin() && isLibraryAsItStands(folder + *(next - 1))) return true;
    if (libraryIsHalfChanged() || !makeFolders(folder) || !storeCopyTo(folder + today)) return false;
    dropCopies(folder, today);
    return true;
}

}  // namespace

bool keepDailyCopy() {
    if (!storeIsOpen() || storeIsDamaged() || storeIsReadOnly()) return true;
    try {
        return makeDailyCopy();
    } catch (const std::bad_alloc &) {
        return false;
    }
}

}  // namespace numalink
