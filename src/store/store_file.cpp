#include "store/store_file.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace numalink {

Lock storeLock;

namespace {

constexpr int noFile = -1;
constexpr std::size_t copyBlockSize = 64 * 1024;  // bytes
constexpr int copyLimit = 1000;                   // damaged files kept beside the library

enum class StepKind { write, barrier, cut };

struct Step {
    StepKind kind;
    std::uint64_t offset;  // or the size to cut at
    Bytes bytes;
};

struct StoreFile {
    int file = noFile;
    std::string path;
    std::vector<Step> steps;  // of the change that is being handed over
    bool broken = false;
};
StoreFile store GUARDED_BY(storeLock);

bool writeAll(std::uint64_t offset, const Bytes &bytes) REQUIRES_LOCK(storeLock) {
    return filePort.writeAt(store.file, offset, bytes.data(), bytes.size()) == bytes.size();
}

bool perform(const Step &step) REQUIRES_LOCK(storeLock) {
    switch (step.kind) {
        case StepKind::write:
            return writeAll(step.offset, step.bytes);
        case StepKind::barrier:
            return filePort.sync(store.file);
        case StepKind::cut:
            return filePort.cut(store.file, step.offset);
    }
    return false;
}

// What the steps are going to overwrite, as it is now. Bytes that are cut off need no keeping: a cut is only made
// behind the end of the records.
bool rememberOld(std::uint64_t size, std::vector<Step> &old) REQUIRES_LOCK(storeLock) {
    for (const Step &step : store.steps) {
        if (step.kind != StepKind::write || step.offset >= size) continue;
        Bytes bytes(static_cast<std::size_t>(std::min<std::uint64_t>(step.bytes.size(), size - step.offset)));
        if (!storeFileRead(step.offset, bytes)) return false;
        old.push_back({StepKind::write, step.offset, std::move(bytes)});
    }
    return true;
}

bool bringBack(std::uint64_t size, const std::vector<Step> &old) REQUIRES_LOCK(storeLock) {
    if (!std::ranges::all_of(old, [](const Step &step) REQUIRES_LOCK(storeLock) { return perform(step); }))
        return false;
    const std::int64_t grown = storeFileSize();
    if (grown < 0) return false;
    if (static_cast<std::uint64_t>(grown) > size && !filePort.cut(store.file, size)) return false;
    return filePort.sync(store.file);
}

bool copyInto(int target) REQUIRES_LOCK(storeLock) {
    const std::int64_t size = storeFileSize();
    if (size < 0) return false;
    Bytes block(copyBlockSize);
    for (std::uint64_t at = 0; at < static_cast<std::uint64_t>(size); at += block.size()) {
        block.resize(
            static_cast<std::size_t>(std::min<std::uint64_t>(copyBlockSize, static_cast<std::uint64_t>(size) - at)));
        if (!storeFileRead(at, block) || filePort.writeAt(target, at, block.data(), block.size()) != block.size())
            return false;
    }
    return filePort.sync(target);
}

}  // namespace

OpenResult storeFileOpen(const std::string &path) {
    store = {};
    store.path = path;
    return filePort.openLocked(path.c_str(), true, store.file);
}

void storeFileClose() {
    if (store.file != noFile) filePort.close(store.file);
    store = {};
}

std::int64_t storeFileSize() { return filePort.size(store.file); }

bool storeFileRead(std::uint64_t offset, std::span<std::uint8_t> bytes) {
    return filePort.readAt(store.file, offset, bytes.data(), bytes.size()) == bytes.size();
}

void changeBegin() { store.steps.clear(); }
void changeWrite(std::uint64_t offset, Bytes bytes) {
    store.steps.push_back({StepKind::write, offset, std::move(bytes)});
}
void changeBarrier() { store.steps.push_back({StepKind::barrier, 0, {}}); }
void changeCut(std::uint64_t size) { store.steps.push_back({StepKind::cut, size, {}}); }

ChangeResult changeCommit() {
    changeBarrier();
    if (store.file == noFile || store.broken) return ChangeResult::broken;
    const std::int64_t size = storeFileSize();
    std::vector<Step> old;
    if (size < 0 || !rememberOld(static_cast<std::uint64_t>(size), old)) return ChangeResult::refused;
    bool atHead = false;
    for (const Step &step : store.steps) {
        if (step.kind == StepKind::write) atHead = step.offset == 0;
        if (perform(step)) continue;
        store.broken = !bringBack(static_cast<std::uint64_t>(size), old);
        if (store.broken) return ChangeResult::broken;
        return atHead ? ChangeResult::headRefused : ChangeResult::refused;
    }
    store.steps.clear();
    return ChangeResult::done;
}

bool storeFileKeepCopy() {
    for (int number = 1; number <= copyLimit; number++) {
        const std::string path = store.path + ".damaged-" + std::to_string(number);
        int copy = noFile;
        // An empty one is what a copy that failed has left.
        const OpenResult there = filePort.openLocked(path.c_str(), false, copy);
        const bool usable = there == OpenResult::opened && filePort.size(copy) == 0;
        if (there == OpenResult::opened && !usable) filePort.close(copy);
        if (there != OpenResult::failed && !usable) continue;
        if (!usable && filePort.openLocked(path.c_str(), true, copy) != OpenResult::opened) return false;
        const bool copied = copyInto(copy);
        if (!copied) filePort.cut(copy, 0);
        filePort.close(copy);
        return copied;
    }
    return false;
}

}  // namespace numalink
