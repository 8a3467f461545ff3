#include "store/file/library_file.h"

#include <algorithm>
#include <utility>

#include "store/file/journal.h"

namespace numalink {

Lock storeLock;

namespace {

constexpr int noFile = -1;
constexpr int keptJournalLimit = 1000;
// Bytes of entries in a journal: all that a library can hold, its sums, and room to spare. More is none of ours, and
// isn't taken into memory.
constexpr std::uint64_t journalLimit = std::uint64_t{5} << 30;
// Bytes that the journal keeps as long as it lies there: with the disk full meanwhile, deleting goes on.
constexpr std::size_t journalReserve = std::size_t{16} * 1024;

struct Write {
    std::uint64_t offset;
    Bytes bytes;
};

struct StoreFile {
    int file = noFile;
    int journal = noFile;
    bool ready = false;  // what came before the first change is on the disk for sure
    bool readOnly = false;
    bool torn = false;      // the journal isn't whole, and has not been written over
    bool broken = false;    // a change is half done, or may be
    bool replaced = false;  // what is open isn't any more what its name leads to, or another program wrote into it
    std::optional<std::uint64_t> knownSize;  // the file as this program read or left it
    Bytes knownHead;
    std::string givenPath;
    std::string path;           // with links followed: the journal lies beside the file itself
    std::vector<Write> writes;  // of the change that is being handed over
};
StoreFile store GUARDED_BY(storeLock);
thread_local Refusal refusal;

// Keeps the cause of what has just failed; gives what it is given.
bool noted(bool done) {
    if (done) return true;
    switch (filePort.lastFault()) {
        case FileFault::full:
            refusal.cause = RefusalCause::full;
            break;
        case FileFault::denied:
            refusal.cause = RefusalCause::denied;
            break;
        case FileFault::unreadable:
            refusal.cause = RefusalCause::disk;
            break;
        case FileFault::other:
            refusal.cause = RefusalCause::unknown;
            break;
    }
    return false;
}

bool notedRead(bool done) {
    if (!done) refusal.cause = RefusalCause::disk;
    return done;
}

bool writeAll(int file, std::uint64_t offset, ByteView bytes) {
    return filePort.writeAt(file, offset, bytes.data(), bytes.size()) == bytes.size();
}

bool readAll(int file, std::uint64_t offset, Bytes &bytes) {
    return filePort.readAt(file, offset, bytes.data(), bytes.size()) == bytes.size();
}

// The file's head record, or as much as there is of it.
bool readMainHead(std::uint64_t size, Bytes &main) REQUIRES_LOCK(storeLock) {
    main.resize(static_cast<std::size_t>(std::min<std::uint64_t>(size, sizeof(MainHeader))));
    return storeFileRead(0, main);
}

// The writes as parts of the file that don't touch each other, by rising offset, with what they are going to cover.
bool gatherRegions(std::uint64_t size, std::vector<Region> &regions) REQUIRES_LOCK(storeLock) {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> spans;
    for (const Write &write : store.writes)
        if (!write.bytes.empty()) spans.emplace_back(write.offset, write.offset + write.bytes.size());
    std::ranges::sort(spans);
    for (const auto &[from, to] : spans) {
        if (regions.empty() || from > regions.back().offset + regions.back().now.size())
            regions.push_back({from, {}, {}});
        Region &region = regions.back();
        region.now.resize(static_cast<std::size_t>(std::max<std::uint64_t>(region.now.size(), to - region.offset)));
    }
    for (const Write &write : store.writes) {
        if (write.bytes.empty()) continue;
        const auto region = std::ranges::upper_bound(regions, write.offset, {}, &Region::offset) - 1;
        std::ranges::copy(write.bytes,
                          region->now.begin() + static_cast<std::ptrdiff_t>(write.offset - region->offset));
    }
    for (Region &region : regions) {
        const std::uint64_t there = size - std::min(size, region.offset);
        region.old.resize(static_cast<std::size_t>(std::min<std::uint64_t>(region.now.size(), there)));
        if (!storeFileRead(region.offset, region.old)) return false;
    }
    return true;
}

bool cutTo(std::uint64_t size) REQUIRES_LOCK(storeLock) {
    const std::int64_t grown = storeFileSize();
    if (grown < 0) return false;
    return static_cast<std::uint64_t>(grown) <= size || filePort.cut(store.file, size);
}

// By rising offset, and the cut last: what is interrupted here is gone over again from the journal, to the same end.
template <typename Regions>
bool bringBack(const Regions &regions, std::uint64_t size) REQUIRES_LOCK(storeLock) {
    for (const auto &region : regions)
        if (!writeAll(store.file, region.offset, region.old)) return false;
    return cutTo(size) && filePort.sync(store.file);
}

// The journal has done its work. Without a sync, and harmless when it fails: see (3).
void retireJournal() REQUIRES_LOCK(storeLock) {
    constexpr std::uint8_t nothing[sizeof(JournalHead::signature)] = {};
    filePort.writeAt(store.journal, 0, nothing, sizeof nothing);
}

// Should it fail, there is less room to go on with.
void reserveJournal() REQUIRES_LOCK(storeLock) {
    const std::int64_t size = filePort.size(store.journal);
    if (size < 0 || static_cast<std::uint64_t>(size) >= journalReserve) return;
    const auto from = static_cast<std::size_t>(size);
    writeAll(store.journal, from, Bytes(journalReserve - from));
}

bool openJournal() REQUIRES_LOCK(storeLock) {
    if (store.journal == noFile) {
        const OpenResult opened = filePort.openOwn(storeJournalPath().c_str(), true, store.journal);
        if (opened != OpenResult::opened) noted(false);
        if (opened == OpenResult::linked) refusal.cause = RefusalCause::linked;
        if (opened != OpenResult::opened) return false;
        filePort.giveRights(store.file, store.journal);
        reserveJournal();
    }
    // The names of both files, and the cut at the end of the run before: a piece behind the file's end is told from
    // what another file has there by its zero bytes.
    if (!store.ready) store.ready = noted(filePort.syncFolder(store.path.c_str()) && filePort.sync(store.file));
    return store.ready;
}

// Whether both files are still what their names lead to; nothing when that can't be told.
std::optional<bool> filesAreNamed() REQUIRES_LOCK(storeLock) {
    const std::optional<bool> named = filePort.isNamed(store.file, store.givenPath.c_str());
    if (!named || !*named || store.journal == noFile) return named;
    return filePort.isNamed(store.journal, storeJournalPath().c_str());
}

// Takes the file as it is for what this program knows of it.
void rememberFile() REQUIRES_LOCK(storeLock) {
    const std::int64_t size = storeFileSize();
    store.knownSize.reset();
    if (size >= 0 && readMainHead(static_cast<std::uint64_t>(size), store.knownHead))
        store.knownSize = static_cast<std::uint64_t>(size);
}

// The head record once these regions are written.
Bytes headWith(Bytes head, const std::vector<Region> &regions) {
    for (const Region &region : regions) {
        if (region.offset >= sizeof(MainHeader)) break;
        const auto from = static_cast<std::size_t>(region.offset);
        const std::size_t count = std::min(region.now.size(), sizeof(MainHeader) - from);
        head.resize(std::max(head.size(), from + count));
        std::copy_n(region.now.begin(), count, head.begin() + static_cast<std::ptrdiff_t>(from));
    }
    return head;
}

// Whether nobody else has written into it, as one does who copies another library over this one while it is open. A
// change would tear the two apart, as would the cut at the end.
bool isAsRemembered(std::uint64_t size, const Bytes &head) REQUIRES_LOCK(storeLock) {
    return !store.knownSize || (*store.knownSize == size && store.knownHead == head);
}

bool writeJournal(ByteView journal) REQUIRES_LOCK(storeLock) {
    store.torn = false;
    if (noted(writeAll(store.journal, 0, journal) && filePort.sync(store.journal))) return true;
    // Gives the room back on a full disk.
    retireJournal();
    const std::int64_t grown = filePort.size(store.journal);
    if (grown < 0 || static_cast<std::uint64_t>(grown) > journalReserve) filePort.cut(store.journal, journalReserve);
    return false;
}

ChangeResult takeBack(const std::vector<Region> &regions, std::uint64_t size, bool atHead) REQUIRES_LOCK(storeLock) {
    store.broken = !bringBack(regions, size);
    if (store.broken) return ChangeResult::broken;
    retireJournal();
    return atHead ? ChangeResult::headRefused : ChangeResult::refused;
}

Recovery applyJournal(const Journal &journal, bool apply) REQUIRES_LOCK(storeLock) {
    const std::int64_t known = storeFileSize();
    const auto size = static_cast<std::uint64_t>(known);
    Bytes main;
    if (known < 0 || !readMainHead(size, main)) return Recovery::failed;
    bool complete = true, foreign = !journalFits(journal, main);
    std::vector<Bytes> there;
    for (const JournalRegion &region : journal.regions) {
        const std::uint64_t rest = size - std::min(size, region.offset);
        Bytes &bytes = there.emplace_back(static_cast<std::size_t>(std::min(rest, region.newSize)));
        if (!storeFileRead(region.offset, bytes)) return Recovery::failed;
        const Progress progress = progressOf(region, bytes);
        complete = complete && progress == Progress::complete;
        foreign = foreign || progress == Progress::foreign;
    }
    if (foreign) return Recovery::foreign;
    if (!apply) return complete ? Recovery::nothing : Recovery::broughtBack;
    if (!complete && !bringBack(journal.regions, journal.head.fileSize)) return Recovery::failed;
    // A complete change may be so in the system's memory alone. That forgets to write what a failed sync was to
    // write, so the bytes are written anew.
    for (std::size_t i = 0; complete && i < there.size(); i++)
        if (!writeAll(store.file, journal.regions[i].offset, there[i])) return Recovery::failed;
    if (complete && !filePort.sync(store.file)) return Recovery::failed;
    retireJournal();
    return complete ? Recovery::nothing : Recovery::broughtBack;
}

// The journal's bytes, up to the end that its head tells; nothing when they can't be read.
std::optional<Bytes> readJournal() REQUIRES_LOCK(storeLock) {
    const std::int64_t known = filePort.size(store.journal);
    if (known < 0) return std::nullopt;
    const auto size = static_cast<std::uint64_t>(known);
    JournalHead head{};
    Bytes bytes(static_cast<std::size_t>(std::min<std::uint64_t>(size, sizeof head)));
    if (!readAll(store.journal, 0, bytes)) return std::nullopt;
    if (decodeJournalHead(bytes, head) != JournalState::whole) return bytes;
    if (head.bodySize > journalLimit) return std::nullopt;
    bytes.resize(sizeof head + static_cast<std::size_t>(std::min(size - sizeof head, head.bodySize)));
    return readAll(store.journal, 0, bytes) ? std::optional(std::move(bytes)) : std::nullopt;
}

Recovery recover(bool apply) REQUIRES_LOCK(storeLock) {
    const std::string path = storeJournalPath();
    const OpenResult there = store.readOnly ? filePort.openToRead(path.c_str(), store.journal)
                                            : filePort.openOwn(path.c_str(), false, store.journal);
    if (there == OpenResult::absent) return Recovery::nothing;
    if (there == OpenResult::linked) return Recovery::linked;
    const std::optional<Bytes> bytes = there == OpenResult::opened ? readJournal() : std::nullopt;
    if (!bytes) return Recovery::unread;
    JournalHead head{};
    const JournalState state = decodeJournalHead(*bytes, head);
    if (state == JournalState::wiped) return Recovery::nothing;
    if (state == JournalState::other) return Recovery::unread;
    const auto journal = decodeJournal(*bytes);
    store.torn = !journal;
    return journal ? applyJournal(*journal, apply) : Recovery::nothing;
}

}  // namespace

OpenResult storeFileOpen(const std::string &path, bool create) {
    store = {};
    store.givenPath = path;
    OpenResult result = filePort.openLocked(path.c_str(), create, store.file);
    if (result == OpenResult::denied) {
        result = filePort.openToRead(path.c_str(), store.file);
        store.readOnly = result == OpenResult::opened;
        if (result == OpenResult::absent) result = OpenResult::failed;  // and it can't be made
    }
    return result == OpenResult::opened && !filePort.realPath(path.c_str(), store.path) ? OpenResult::failed : result;
}

void storeFileClose() {
    if (store.journal != noFile) {
        const bool needed = store.broken || store.torn || store.readOnly;
        if (!needed && filesAreNamed() == true) filePort.remove(storeJournalPath().c_str());
        filePort.close(store.journal);
    }
    if (store.file != noFile) filePort.close(store.file);
    store = {};
}

const std::string &storeFilePath() { return store.path; }
std::string storeJournalPath() { return store.path + "-journal"; }

bool storeFileIsBroken() { return store.broken; }
bool storeFileIsReadOnly() { return store.readOnly; }

std::int64_t storeFileSize() { return filePort.size(store.file); }

bool storeFileRead(std::uint64_t offset, std::span<std::uint8_t> bytes) {
    return filePort.readAt(store.file, offset, bytes.data(), bytes.size()) == bytes.size();
}

void storeFileGiveRights(int other) { filePort.giveRights(store.file, other); }

void storeFileCut(std::uint64_t size) {
    const std::int64_t grown = storeFileSize();
    if (store.readOnly || store.broken || store.replaced || grown < 0 || static_cast<std::uint64_t>(grown) <= size)
        return;
    Bytes head;
    if (filesAreNamed() != true || !readMainHead(static_cast<std::uint64_t>(grown), head)) return;
    if (!isAsRemembered(static_cast<std::uint64_t>(grown), head)) return;
    // The journal of a change that was taken back tells of bytes that are cut off here: first it goes for good.
    if (store.journal == noFile || filePort.sync(store.journal)) filePort.cut(store.file, size);
}

Recovery storeFileRecover(bool apply) {
    store.broken = true;  // whatever ends the work half-way leaves the journal
    const Recovery result = recover(apply);
    store.broken = (!apply && !store.readOnly) || (result != Recovery::nothing && result != Recovery::broughtBack);
    rememberFile();
    return result;
}

std::string storeJournalSetAside() {
    for (int number = 1; number <= keptJournalLimit; number++) {
        std::string kept = storeJournalPath() + ".kept-" + std::to_string(number);
        int other = noFile;
        const OpenResult there = filePort.openLocked(kept.c_str(), false, other);
        if (there == OpenResult::opened) filePort.close(other);
        if (there != OpenResult::absent) continue;
        if (!filePort.rename(storeJournalPath().c_str(), kept.c_str()) || !filePort.syncFolder(kept.c_str())) return {};
        filePort.close(store.journal);
        store.journal = noFile;
        store.torn = store.broken = false;
        return kept;
    }
    return {};
}

bool storeJournalKeepTorn() { return !store.torn || !storeJournalSetAside().empty(); }

const Refusal &lastRefusal() { return refusal; }
void forgetRefusal() { refusal = {}; }

void changeBegin() { store.writes.clear(); }
void changeWrite(std::uint64_t offset, Bytes bytes) { store.writes.push_back({offset, std::move(bytes)}); }

ChangeResult changeCommit() {
    if (store.file == noFile || store.broken) return ChangeResult::broken;
    if (store.readOnly) {
        refusal.cause = RefusalCause::denied;
        return ChangeResult::refused;
    }
    // A name that leads elsewhere now, as after a restored copy, would leave this change in a file that nobody opens
    // again.
    const std::optional<bool> named = filesAreNamed();
    store.replaced = store.replaced || named == false;
    if (store.replaced) return ChangeResult::replaced;
    if (!named) return ChangeResult::refused;
    const std::int64_t found = storeFileSize();
    const std::uint64_t size = static_cast<std::uint64_t>(found);
    std::vector<Region> regions;
    Bytes oldMain;
    if (found < 0 || !notedRead(gatherRegions(size, regions) && readMainHead(size, oldMain)))
        return ChangeResult::refused;
    store.writes.clear();
    store.replaced = !isAsRemembered(size, oldMain);
    if (store.replaced) return ChangeResult::replaced;
    Bytes head = headWith(oldMain, regions);
    const Bytes journal = encodeJournal(regions, size, oldMain);
    refusal.room = journal.size();
    for (const Region &region : regions) refusal.room += region.now.size() - region.old.size();
    // From here on in the order of the three steps. All that can fail for want of memory has been done.
    if (!openJournal() || !writeJournal(journal)) return ChangeResult::refused;
    for (const Region &region : regions)
        if (!noted(writeAll(store.file, region.offset, region.now))) return takeBack(regions, size, region.offset == 0);
    if (!noted(filePort.sync(store.file))) return takeBack(regions, size, false);
    retireJournal();
    // Nothing from here on may fail: the change is made.
    store.knownHead = std::move(head);
    store.knownSize = size;
    for (const Region &region : regions)
        store.knownSize = std::max(*store.knownSize, region.offset + region.now.size());
    return ChangeResult::done;
}

}  // namespace numalink
