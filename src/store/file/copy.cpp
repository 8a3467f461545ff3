#include "store/file/copy.h"

#include <algorithm>

namespace numalink {

namespace {

constexpr int noFile = -1;
constexpr std::size_t blockSize = std::size_t{64} * 1024, sectorBytes = 512;
constexpr int copyLimit = 1000;  // damaged files kept beside the library

// With holes, what can't be read comes out as zero bytes, a sector at a time.
bool readForCopy(std::uint64_t at, std::span<std::uint8_t> block, bool holes) REQUIRES_LOCK(storeLock) {
    if (storeFileRead(at, block)) return true;
    if (!holes) return false;
    for (std::size_t from = 0; from < block.size(); from += sectorBytes) {
        const auto part = block.subspan(from, std::min(sectorBytes, block.size() - from));
        if (!storeFileRead(at + from, part)) std::ranges::fill(part, std::uint8_t{0});
    }
    return true;
}

// All that read(at, block) gives of a file of known size, or false.
template <typename Read>
bool copyInto(int target, std::int64_t known, Read read) REQUIRES_LOCK(storeLock) {
    if (known < 0) return false;
    const auto size = static_cast<std::uint64_t>(known);
    Bytes block(blockSize);
    for (std::uint64_t at = 0; at < size; at += block.size()) {
        block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(blockSize, size - at)));
        if (!read(at, block) || filePort.writeAt(target, at, block.data(), block.size()) != block.size()) return false;
    }
    return true;
}

// Fills a file of another name, which becomes path's once it is whole.
template <typename Fill>
bool makeWhole(const std::string &path, Fill fill) REQUIRES_LOCK(storeLock) {
    const std::string made = path + "-new";
    int file = noFile;
    filePort.remove(made.c_str());  // of a copy that was cut short, or a link to elsewhere
    if (filePort.openOwn(made.c_str(), true, file) != OpenResult::opened) return false;
    storeFileGiveRights(file);
    const bool filled = filePort.cut(file, 0) && fill(file) && filePort.sync(file);
    filePort.close(file);
    if (filled && filePort.rename(made.c_str(), path.c_str())) return filePort.syncFolder(path.c_str());
    filePort.remove(made.c_str());
    return false;
}

bool copyTo(const std::string &path, bool holes) REQUIRES_LOCK(storeLock) {
    return makeWhole(path, [&](int file) REQUIRES_LOCK(storeLock) {
        return copyInto(file, storeFileSize(),
                        [&](std::uint64_t at, std::span<std::uint8_t> block)
                            REQUIRES_LOCK(storeLock) { return readForCopy(at, block, holes); });
    });
}

}  // namespace

bool storeFileKeepCopy() {
    for (int number = 1; number <= copyLimit; number++) {
        const std::string path = storeFilePath() + ".damaged-" + std::to_string(number);
        int there = noFile;
        const OpenResult opened = filePort.openLocked(path.c_str(), false, there);
        if (opened == OpenResult::opened) filePort.close(there);
        if (opened == OpenResult::absent) return copyTo(path, true);
    }
    return false;
}

bool storeFileCopyTo(const std::string &path) { return copyTo(path, false); }

bool storeFileReplace(ByteView bytes) {
    return makeWhole(storeFilePath(),
                     [&](int file) { return filePort.writeAt(file, 0, bytes.data(), bytes.size()) == bytes.size(); });
}

bool storeFileReplaceBy(const std::string &path) {
    int source = noFile;
    if (filePort.openLocked(path.c_str(), false, source) != OpenResult::opened) return false;
    const bool done = makeWhole(storeFilePath(), [&](int file) REQUIRES_LOCK(storeLock) {
        return copyInto(file, filePort.size(source), [&](std::uint64_t at, std::span<std::uint8_t> block) {
            return filePort.readAt(source, at, block.data(), block.size()) == block.size();
        });
    });
    filePort.close(source);
    return done;
}

}  // namespace numalink
