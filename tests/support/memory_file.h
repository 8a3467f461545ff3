// Files in memory behind the file port, for tests and fuzz targets: fast, and with a write or sync that fails to order.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "platform/bytes.h"
#include "platform/file_port.h"

namespace numalink {

struct MemoryDisk {
    std::map<std::string, Bytes> files;
    std::vector<std::string> openFiles;  // path by file number; empty when closed
    int operations = 0;                  // writes, cuts, syncs, renames and removals so far
    int failingFrom = 0;                 // the first of them that fails, counted from 1; 0 for none
    int failingCount = 0;                // how many fail
    std::uint64_t writtenBytes = 0;
};
inline MemoryDisk memoryDisk;

namespace memoryFile {

inline Bytes &content(int file) { return memoryDisk.files[memoryDisk.openFiles[static_cast<std::size_t>(file)]]; }

inline bool fails() {
    memoryDisk.operations++;
    return memoryDisk.failingFrom > 0 && memoryDisk.operations >= memoryDisk.failingFrom &&
           memoryDisk.operations - memoryDisk.failingFrom < memoryDisk.failingCount;
}

inline OpenResult openLocked(const char *path, bool create, int &file) {
    if (std::ranges::find(memoryDisk.openFiles, path) != memoryDisk.openFiles.end()) return OpenResult::heldByAnother;
    if (!create && !memoryDisk.files.contains(path)) return OpenResult::absent;
    memoryDisk.files[path];
    memoryDisk.openFiles.emplace_back(path);
    file = static_cast<int>(memoryDisk.openFiles.size()) - 1;
    return OpenResult::opened;
}

inline std::size_t readAt(int file, std::uint64_t offset, void *bytes, std::size_t count) {
    const Bytes &source = content(file);
    if (offset >= source.size()) return 0;
    count = std::min<std::size_t>(count, source.size() - static_cast<std::size_t>(offset));
    if (count > 0) std::memcpy(bytes, source.data() + offset, count);
    return count;
}

// A write that fails stops half-way, as on a full disk.
inline std::size_t writeAt(int file, std::uint64_t offset, const void *bytes, std::size_t count) {
    if (fails()) count /= 2;
    Bytes &target = content(file);
    if (count > 0 && target.size() < offset + count) target.resize(static_cast<std::size_t>(offset) + count);
    if (count > 0) std::memcpy(target.data() + offset, bytes, count);
    memoryDisk.writtenBytes += count;
    return count;
}

inline bool cut(int file, std::uint64_t size) {
    if (fails()) return false;
    content(file).resize(static_cast<std::size_t>(size));
    return true;
}

inline bool rename(const char *from, const char *to) {
    if (fails() || !memoryDisk.files.contains(from)) return false;
    memoryDisk.files[to] = std::move(memoryDisk.files[from]);
    return memoryDisk.files.erase(from) > 0;
}

}  // namespace memoryFile

inline constexpr FilePort memoryFilePort = {
    .openLocked = memoryFile::openLocked,
    .size = [](int file) { return static_cast<std::int64_t>(memoryFile::content(file).size()); },
    .readAt = memoryFile::readAt,
    .writeAt = memoryFile::writeAt,
    .cut = memoryFile::cut,
    .sync = [](int) { return !memoryFile::fails(); },
    .close = [](int file) { memoryDisk.openFiles[static_cast<std::size_t>(file)].clear(); },
    .remove = [](const char *path) { return !memoryFile::fails() && memoryDisk.files.erase(path) > 0; },
    .rename = memoryFile::rename,
    .isNamed = [](int, const char *) { return std::optional(true); },
    .realPath =
        [](const char *path, std::string &real) {
            real = path;
            return true;
        },
    .syncFolder = [](const char *) { return !memoryFile::fails(); },
};

// An empty disk in memory in place of the system's for the life of the object.
struct MemoryFiles {
    MemoryFiles() {
        memoryDisk = {};
        filePort = memoryFilePort;
    }
    ~MemoryFiles() { filePort = systemFilePort; }
    MemoryFiles(const MemoryFiles &) = delete;
    MemoryFiles &operator=(const MemoryFiles &) = delete;
};

}  // namespace numalink
