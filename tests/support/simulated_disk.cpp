#include "support/simulated_disk.h"

#include <algorithm>
#include <cstring>

#include "support/failing_memory.h"

namespace numalink {

namespace {

constexpr std::size_t sector = 512;  // bytes that are written whole or not at all

SimulatedDisk &disk = simulatedDisk;

bool fails() {
    if (disk.dead) return true;
    disk.operations++;
    return disk.failingFrom > 0 && disk.operations >= disk.failingFrom &&
           disk.operations - disk.failingFrom < disk.failingCount;
}

void writeInto(Bytes &content, std::uint64_t offset, ByteView bytes) {
    if (bytes.empty()) return;
    const auto end = static_cast<std::size_t>(offset) + bytes.size();
    if (content.size() < end) content.resize(end);
    std::memcpy(content.data() + offset, bytes.data(), bytes.size());
}

void perform(DiskImage &image, const DiskStep &step) {
    if (step.action == DiskAction::write) writeInto(image.files[step.file], step.offset, step.bytes);
    if (step.action == DiskAction::cut) image.files[step.file].resize(static_cast<std::size_t>(step.offset));
    if (step.action == DiskAction::create) image.names[step.name] = step.file;
    if (step.action == DiskAction::rename) image.names[step.newName] = step.file;
    if (step.action == DiskAction::remove || step.action == DiskAction::rename) image.names.erase(step.name);
}

bool take(DiskStep step) {
    perform(disk.now, step);
    if (disk.remembers) disk.steps.push_back(std::move(step));
    return true;
}

bool isOfNames(const DiskStep &step) {
    return step.action == DiskAction::create || step.action == DiskAction::remove || step.action == DiskAction::rename;
}

int newFile() {
    int number = static_cast<int>(disk.now.files.size());
    while (disk.now.files.contains(number)) number++;
    disk.now.files[number];
    return number;
}

OpenResult openLocked(const char *path, bool create, int &file) {
    const SpareMemory spare;
    if (fails()) return OpenResult::failed;
    auto found = disk.now.names.find(path);
    if (found == disk.now.names.end()) {
        if (!create) return OpenResult::absent;
        take({DiskAction::create, newFile(), 0, {}, path, {}});
        found = disk.now.names.find(path);
    }
    for (const auto &[handle, open] : disk.openFiles)
        if (open == found->second) return OpenResult::heldByAnother;
    file = disk.openFiles.empty() ? 3 : disk.openFiles.rbegin()->first + 1;
    disk.openFiles[file] = found->second;
    return OpenResult::opened;
}

std::size_t readAt(int file, std::uint64_t offset, void *bytes, std::size_t count) {
    if (fails()) return 0;
    const Bytes &content = disk.now.files[disk.openFiles[file]];
    count = std::min<std::size_t>(count, content.size() - std::min<std::size_t>(content.size(), offset));
    if (count > 0) std::memcpy(bytes, content.data() + offset, count);
    return count;
}

// One that fails stops half-way, as on a full disk: with a sector, or anywhere behind the file's end.
std::size_t writeAt(int file, std::uint64_t offset, const void *bytes, std::size_t count) {
    const SpareMemory spare;
    if (fails()) {
        std::uint64_t end = offset + (disk.dead ? 0 : count / 2);
        if (end < disk.now.files[disk.openFiles[file]].size()) end -= end % sector;
        count = static_cast<std::size_t>(std::max(end, offset) - offset);
    }
    const auto *from = static_cast<const std::uint8_t *>(bytes);
    const int number = disk.openFiles[file];
    if (!disk.remembers)
        writeInto(disk.now.files[number], offset, {from, count});
    else if (count > 0)
        take({DiskAction::write, number, offset, {from, from + count}, {}, {}});
    return count;
}

bool removeName(const char *path) {
    const SpareMemory spare;
    if (fails() || !disk.now.names.contains(path)) return false;
    return take({DiskAction::remove, disk.now.names[path], 0, {}, path, {}});
}

bool rename(const char *from, const char *to) {
    const SpareMemory spare;
    if (fails() || !disk.now.names.contains(from)) return false;
    return take({DiskAction::rename, disk.now.names[from], 0, {}, from, to});
}

bool cut(int file, std::uint64_t size) {
    const SpareMemory spare;
    return !fails() && take({DiskAction::cut, disk.openFiles[file], size, {}, {}, {}});
}

std::optional<bool> isNamed(int file, const char *path) {
    const SpareMemory spare;
    if (fails()) return std::nullopt;
    const auto found = disk.now.names.find(path);
    return found != disk.now.names.end() && found->second == disk.openFiles[file];
}

bool takeSync(DiskAction action, int file) {
    const SpareMemory spare;
    const bool failed = fails();
    if (action == DiskAction::sync) disk.lastSync = disk.operations;
    if (failed && !disk.dead && action == DiskAction::sync) take({DiskAction::failedSync, file, 0, {}, {}, {}});
    return !failed && take({action, file, 0, {}, {}, {}});
}

const FilePort simulatedFilePort = {
    .openLocked = openLocked,
    .openOwn = openLocked,
    .openToRead = [](const char *path, int &file) { return openLocked(path, false, file); },
    .size = [](int file) -> std::int64_t {
        return fails() ? -1 : static_cast<std::int64_t>(disk.now.files[disk.openFiles[file]].size());
    },
    .readAt = readAt,
    .writeAt = writeAt,
    .cut = cut,
    .sync = [](int file) { return takeSync(DiskAction::sync, disk.openFiles[file]); },
    .close = [](int file) { disk.openFiles.erase(file); },
    .remove = removeName,
    .rename = rename,
    .isNamed = isNamed,
    .giveRights = [](int, int) {},
    .realPath =
        [](const char *path, std::string &real) {
            const SpareMemory spare;
            real = path;
            return !fails();
        },
    .syncFolder = [](const char *) { return takeSync(DiskAction::syncFolder, 0); },
    .lastFault = [] { return FileFault::other; },
};

// The sectors of a write, each of them there or not.
void performTorn(DiskImage &image, const DiskStep &step, Random &random) {
    for (std::size_t from = 0; from < step.bytes.size();) {
        const std::size_t rest = sector - (static_cast<std::size_t>(step.offset) + from) % sector;
        const ByteView part = ByteView(step.bytes).subspan(from, std::min(rest, step.bytes.size() - from));
        if (random() % 2 == 0) writeInto(image.files[step.file], step.offset + from, part);
        from += part.size();
    }
}

// The steps that no sync has seen through by then, in their order; what was seen through is done to image. Of what a
// failed sync was to write some comes to the disk, and the system forgets to write the rest.
std::vector<const DiskStep *> unsyncedSteps(const SimulatedDisk &of, DiskImage &image, std::size_t stepCount,
                                            Random &random) {
    std::vector<const DiskStep *> waiting;
    for (const DiskStep &step : std::span(of.steps).first(stepCount)) {
        const bool ofFolder = step.action == DiskAction::syncFolder, failed = step.action == DiskAction::failedSync;
        if (step.action != DiskAction::sync && !ofFolder && !failed) {
            waiting.push_back(&step);
            continue;
        }
        std::erase_if(waiting, [&](const DiskStep *other) {
            const bool ofFile = !isOfNames(*other) && other->file == step.file;
            if (failed && ofFile && other->action == DiskAction::write) {
                performTorn(image, *other, random);
                return true;
            }
            const bool done = !failed && (ofFolder ? isOfNames(*other) : ofFile);
            if (done) perform(image, *other);
            return done;
        });
    }
    return waiting;
}

}  // namespace

void diskLoad(const DiskImage &image) {
    const bool remembers = disk.remembers;
    disk = {};
    disk.start = disk.now = image;
    disk.remembers = remembers;
}

Bytes &diskFile(const std::string &path) {
    if (!disk.now.names.contains(path)) disk.now.names[path] = newFile();
    return disk.now.files[disk.now.names[path]];
}

DiskImage diskAfterCrash(const SimulatedDisk &of, std::size_t stepCount, Random &random) {
    DiskImage image = of.start;
    const std::vector<const DiskStep *> waiting = unsyncedSteps(of, image, stepCount, random);
    // Names change in the order of their steps, up to some of them; contents in any order.
    std::vector<const DiskStep *> contents;
    bool namesGoOn = true;
    const std::uint32_t manner = random() % 4;
    for (const DiskStep *step : waiting) {
        if (!isOfNames(*step)) contents.push_back(step);
        namesGoOn = namesGoOn && manner != 0 && (manner == 1 || random() % 4 > 0);
        if (isOfNames(*step) && namesGoOn) perform(image, *step);
    }
    if (manner >= 2) std::ranges::shuffle(contents, random);
    for (const DiskStep *step : contents) {
        if (manner == 0 || (manner >= 2 && random() % 3 == 0)) continue;
        if (manner == 3 && step->action == DiskAction::write)
            performTorn(image, *step, random);
        else
            perform(image, *step);
    }
    return image;
}

SimulatedFiles::SimulatedFiles(Steps steps) {
    disk.remembers = steps == Steps::remembered;
    diskLoad({});
    filePort = simulatedFilePort;
}

SimulatedFiles::~SimulatedFiles() { filePort = systemFilePort; }

}  // namespace numalink
