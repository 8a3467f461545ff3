#include "store/store_copy.h"

#include <algorithm>

namespace numalink {

namespace {

constexpr int noFile = -1;
constexpr std::size_t blockSize = std::size_t{64} * 1024;  // bytes
constexpr int copyLimit = 1000;                            // damaged files kept beside the library

bool copyInto(int target) REQUIRES_LOCK(storeLock) {
    const std::int64_t known = storeFileSize();
    if (known < 0) return false;
    const auto size = static_cast<std::uint64_t>(known);
    Bytes block(blockSize);
    for (std::uint64_t at = 0; at < size; at += block.size()) {
        block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(blockSize, size - at)));
        if (!storeFileRead(at, block) || filePort.writeAt(target, at, block.data(), block.size()) != block.size())
            return false;
    }
    return filePort.sync(target);
}

}  // namespace

bool storeFileKeepCopy() {
    for (int number = 1; number <= copyLimit; number++) {
        const std::string path = storeFilePath() + ".damaged-" + std::to_string(number);
        int copy = noFile;
        // An empty one is what a copy that failed has left.
        const OpenResult there = filePort.openLocked(path.c_str(), false, copy);
        const bool usable = there == OpenResult::opened && filePort.size(copy) == 0;
        if (there == OpenResult::opened && !usable) filePort.close(copy);
        if (there != OpenResult::absent && !usable) continue;
        if (!usable && filePort.openLocked(path.c_str(), true, copy) != OpenResult::opened) return false;
        const bool copied = copyInto(copy) && filePort.syncFolder(path.c_str());
        if (!copied) filePort.cut(copy, 0);
        filePort.close(copy);
        return copied;
    }
    return false;
}

bool storeFileCopyTo(const std::string &path) {
    const std::string made = path + "-new";
    int copy = noFile;
    if (filePort.openLocked(made.c_str(), true, copy) != OpenResult::opened) return false;
    const bool copied = filePort.cut(copy, 0) && copyInto(copy);
    filePort.close(copy);
    if (copied && filePort.rename(made.c_str(), path.c_str())) return filePort.syncFolder(path.c_str());
    filePort.remove(made.c_str());
    return false;
}

}  // namespace numalink
