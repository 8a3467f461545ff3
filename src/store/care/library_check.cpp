#include "store/care/library_check.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "platform/program_folder.h"
#include "store/file/check.h"
#include "store/file/copy.h"

namespace numalink {

namespace {

constexpr std::size_t scanBlock = std::size_t{64} * 1024, unreadableSkip = 512;  // bytes

// What an examination has found: the head as it lies, and the records that can be kept.
struct Examined {
    MainHeader main{};
    std::vector<Slot> slots;             // of the table
    std::vector<std::uint64_t> offsets;  // of the records found outside it
    std::vector<ItemHeader> found;       // their heads
    std::vector<Stretch> strays;
    std::uint64_t fileSize = 0;
};

bool readHead(std::uint64_t offset, ItemHeader &head) REQUIRES_LOCK(storeLock) {
    return storeFileRead(offset, {reinterpret_cast<std::uint8_t *>(&head), sizeof head});
}

// Looks for the signatures of records ahead of limit. Called again and again, it goes on in the block that it has.
struct SignatureSearch {
    const std::uint64_t limit;
    std::uint64_t start = 0;  // of block in the file
    Bytes block;

    // Reads on from here; false when that can't be read, and block is then what is to be passed over.
    bool load(std::uint64_t from) REQUIRES_LOCK(storeLock);
    // The next place from this one on where a signature lies, or limit.
    std::uint64_t next(std::uint64_t from) REQUIRES_LOCK(storeLock);
};

bool SignatureSearch::load(std::uint64_t from) {
    start = from;
    block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(scanBlock, limit - from)));
    if (storeFileRead(from, block)) return true;
    if (block.size() > unreadableSkip) block.resize(unreadableSkip);
    return storeFileRead(from, block);
}

std::uint64_t SignatureSearch::next(std::uint64_t from) {
    while (limit - std::min(from, limit) >= sizeof itemSignature) {
        const bool atHand = from >= start && from + sizeof itemSignature <= start + block.size();
        if (!atHand && !load(from)) {
            from += block.size();
            block.clear();
            continue;
        }
        const auto first = block.begin() + static_cast<std::ptrdiff_t>(from - start);
        const auto hit = std::search(first, block.end(), std::begin(itemSignature), std::end(itemSignature));
        if (hit != block.end()) return start + static_cast<std::uint64_t>(hit - block.begin());
        from = start + block.size() - (sizeof itemSignature - 1);
    }
    return limit;
}

// Whether the signature of a record lies here.
bool signatureAt(std::uint64_t offset) REQUIRES_LOCK(storeLock) {
    char there[sizeof itemSignature] = {};
    return storeFileRead(offset, {reinterpret_cast<std::uint8_t *>(there), sizeof there}) &&
           std::memcmp(there, itemSignature, sizeof there) == 0;
}

// Whether a record's size can be believed: behind it lies another record or the end, or within it none.
bool sizeIsCredible(const ItemHeader &head, std::uint64_t offset, std::uint64_t limit) REQUIRES_LOCK(storeLock) {
    const std::uint64_t end = offset + recordSize(head);
    if (end == limit || (limit - end >= sizeof itemSignature && signatureAt(end))) return true;
    const std::uint64_t last = std::min(limit, end + sizeof itemSignature - 1);
    SignatureSearch search{.limit = last, .block = {}};
    for (std::uint64_t at = search.next(offset + sizeof head); at < last; at = search.next(at + 1)) {
        ItemHeader inner{};
        if (readHead(at, inner) && recordIsSound(inner, at, limit)) return false;
    }
    return true;
}

bool payloadsReadable(const ItemHeader &head, std::uint64_t offset) REQUIRES_LOCK(storeLock) {
    const std::uint64_t end = offset + recordSize(head);
    Bytes block;
    for (std::uint64_t at = offset; at < end; at += block.size()) {
        block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(scanBlock, end - at)));
        if (!storeFileRead(at, block)) return false;
    }
    return true;
}

// Whether a record of this size lies at either place, the same to the byte.
bool isSameRecord(std::uint64_t one, std::uint64_t other, std::uint64_t size) REQUIRES_LOCK(storeLock) {
    Bytes there, elsewhere;
    for (std::uint64_t at = 0; at < size; at += there.size()) {
        there.resize(static_cast<std::size_t>(std::min<std::uint64_t>(scanBlock, size - at)));
        elsewhere.resize(there.size());
        if (!storeFileRead(one + at, there) || !storeFileRead(other + at, elsewhere) || there != elsewhere)
            return false;
    }
    return true;
}

// Looks through one stretch that no record of the table covers. ids: where the record of each id lies. One that has the
// id of another, and isn't a copy of it, is kept beside it under an id of its own.
void searchStretch(Examined &examined, std::map<ItemId, std::uint64_t> &ids, std::uint64_t from, std::uint64_t limit)
    REQUIRES_LOCK(storeLock) {
    SignatureSearch search{.limit = limit, .block = {}};
    for (std::uint64_t at = search.next(from); at < limit; at = search.next(at)) {
        ItemHeader head{};
        if (!readHead(at, head) || !recordIsSound(head, at, limit) || !sizeIsCredible(head, at, limit) ||
            !payloadsReadable(head, at)) {
            at++;
            continue;
        }
        const auto [same, ownId] = ids.emplace(head.id, at);
        if (ownId || !isSameRecord(same->second, at, recordSize(head))) {
            examined.offsets.push_back(at);
            examined.found.push_back(head);
            if (!ownId) examined.found.back().id = noItem;  // gets one of its own
        }
        at += recordSize(head);
    }
}

// Behind the end of the records lies what was deleted, unless the head can't be believed.
void searchFile(Examined &examined, bool headLies) REQUIRES_LOCK(storeLock) {
    std::map<ItemId, std::uint64_t> ids;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> covered;
    for (std::size_t slot = 0; slot < examined.slots.size(); slot++) {
        if (!examined.slots[slot].sound) continue;
        ids.emplace(examined.slots[slot].head.id, examined.main.offsets[slot]);
        covered.emplace_back(examined.main.offsets[slot], recordSize(examined.slots[slot].head));
    }
    std::ranges::sort(covered);
    const std::uint64_t end =
        headLies ? examined.fileSize : std::min<std::uint64_t>(examined.fileSize, examined.main.endOffset);
    std::uint64_t from = std::min<std::uint64_t>(sizeof(MainHeader), examined.fileSize);
    for (const auto &[offset, size] : covered) {
        searchStretch(examined, ids, from, offset);
        from = offset + size;
    }
    searchStretch(examined, ids, std::min(from, end), end);
}

CheckedRecord recordOf(const ItemHeader &head, std::uint64_t offset, RecordFate fate) {
    return {head.id, head.kind, std::string(nameOf(head).substr(0, storeNameLimit)), offset, fate};
}

// Records whose bytes the disk doesn't give are lost, whatever their heads say.
std::uint32_t dropUnreadable(Examined &examined) REQUIRES_LOCK(storeLock) {
    std::uint32_t count = 0;
    for (std::size_t slot = 0; slot < examined.slots.size(); slot++) {
        Slot &record = examined.slots[slot];
        if (!record.sound || payloadsReadable(record.head, examined.main.offsets[slot])) continue;
        record.sound = false;
        count++;
    }
    return count;
}

void listRecords(const Examined &examined, LibraryCheck &check) {
    std::size_t room = storeSlotCount;
    for (std::size_t slot = 0; slot < examined.slots.size(); slot++) {
        const bool sound = examined.slots[slot].sound;
        if (sound) room--;
        check.records.push_back(recordOf(examined.slots[slot].head, examined.main.offsets[slot],
                                         sound ? RecordFate::sound : RecordFate::lost));
    }
    for (std::size_t i = 0; i < examined.found.size(); i++)
        check.records.push_back(
            recordOf(examined.found[i], examined.offsets[i], i < room ? RecordFate::found : RecordFate::lost));
    for (const Stretch &stray : examined.strays) {
        const bool explained = std::ranges::any_of(
            examined.offsets, [&](std::uint64_t offset) { return offset >= stray.from && offset < stray.to; });
        if (!explained) check.records.push_back({noItem, kind::unknown, stray.before, stray.from, RecordFate::rest});
    }
}

void examine(Examined &examined, LibraryCheck &check) REQUIRES_LOCK(storeLock) {
    bool headLies = !check.headUsable;
    std::uint32_t unreadable = 0;
    if (check.headUsable) {
        readSlots(examined.main, examined.slots);
        check.damage = checkStore(examined.main, examined.fileSize, examined.slots);
        const auto lost = std::ranges::count(examined.slots, false, &Slot::sound);
        check.circles = static_cast<std::uint32_t>(foldersInCircle(examined.slots).size());
        headLies = check.damage > static_cast<std::uint32_t>(lost) + check.circles;
        if (check.damage == 0) examined.strays = strayStretches(examined.main, examined.slots);
        unreadable = dropUnreadable(examined);
    }
    searchFile(examined, headLies);
    check.damage +=
        static_cast<std::uint32_t>(examined.strays.empty() ? examined.found.size() : examined.strays.size());
    check.damage += unreadable + (check.headUsable ? 0 : 1);
    listRecords(examined, check);
}

// The head of a kept record in a table without circles.
ItemHeader keptHead(const Slot &slot, const std::vector<ItemId> &circle) {
    ItemHeader head = slot.head;
    if (isFolderKind(head.kind) && std::ranges::count(circle, head.id) > 0) head.parent = rootId;
    return head;
}

// Gives a record another id; what a folder holds follows it.
void renumber(std::vector<Slot> &kept, ItemHeader &head, ItemId id) {
    for (Slot &slot : kept)
        if (head.id != noItem && slot.head.parent == head.id) slot.head.parent = id;
    head.id = id;
}

// The file anew: all that can be kept, side by side.
bool composeFile(const Examined &examined, Bytes &file) REQUIRES_LOCK(storeLock) {
    std::vector<Slot> kept;
    std::vector<std::uint64_t> offsets;
    for (std::size_t slot = 0; slot < examined.slots.size(); slot++) {
        if (!examined.slots[slot].sound) continue;
        kept.push_back(examined.slots[slot]);
        offsets.push_back(examined.main.offsets[slot]);
    }
    const auto temporary =
        std::ranges::find(kept, kind::temporaryFolder, [](const Slot &slot) { return slot.head.kind; });
    const ItemId emptied = temporary == kept.end() ? noItem : temporary->head.id;
    for (std::size_t i = 0; i < examined.found.size() && kept.size() < storeSlotCount; i++) {
        kept.push_back({examined.found[i], true});
        offsets.push_back(examined.offsets[i]);
        // What was saved isn't to go with the temporary folder's contents at the next start.
        ItemHeader &head = kept.back().head;
        if (head.kind == kind::temporaryFolder) head.kind = kind::folder;
        if (head.parent == emptied) head.parent = rootId;
    }
    MainHeader main = emptyMain();
    main.formatNumber = std::min(examined.main.formatNumber, storeNewestFormat);
    if (examined.main.formatNumber == 0) main.formatNumber = storeNewestFormat;
    constexpr ItemId keptLimit = idLimit - storeSlotCount - 1;  // room for all to get others
    main.nextId = examined.main.nextId < keptLimit ? examined.main.nextId : 0;
    std::vector<Slot> known = kept;
    std::erase_if(known, [](const Slot &slot) { return slot.head.id >= keptLimit; });
    main.nextId = safeNextId(main, known);
    for (Slot &slot : kept)
        if (slot.head.id >= keptLimit) renumber(kept, slot.head, main.nextId++);
    const std::vector<ItemId> circle = foldersInCircle(kept);
    file.resize(sizeof main);
    for (std::size_t i = 0; i < kept.size(); i++) {
        const ItemHeader head = keptHead(kept[i], circle);
        const std::size_t place = file.size();
        if (place + recordSize(head) > UINT32_MAX) return false;
        file.resize(place + static_cast<std::size_t>(recordSize(head)));
        if (!storeFileRead(offsets[i], std::span(file).subspan(place))) return false;
        std::memcpy(file.data() + place, &head, sizeof head);
        main.offsets[i] = static_cast<std::uint32_t>(place);
    }
    main.itemCount = static_cast<std::uint32_t>(kept.size());
    main.endOffset = static_cast<std::uint32_t>(file.size());
    std::memcpy(file.data(), &main, sizeof main);
    return true;
}

// By a new file rather than by a change, which would have to read first what it writes over.
bool rewrite(const Examined &examined) REQUIRES_LOCK(storeLock) {
    Bytes file;
    return composeFile(examined, file) && storeFileKeepCopy() && storeJournalKeepTorn() && storeFileReplace(file);
}

void checkOpened(LibraryCheck &check, bool repair) REQUIRES_LOCK(storeLock) {
    Recovery recovery = storeFileRecover(repair);
    check.interrupted = recovery == Recovery::broughtBack;
    if (recovery == Recovery::foreign) check.otherJournal = repair ? storeJournalSetAside() : storeJournalPath();
    if (recovery == Recovery::foreign && check.otherJournal.empty()) recovery = Recovery::failed;
    if (recovery == Recovery::unread || recovery == Recovery::failed) check.outcome = CheckOutcome::journalUnusable;
    const std::int64_t size = storeFileSize();
    if (recovery == Recovery::unread || recovery == Recovery::failed || size < 0) return;
    Examined examined;
    examined.fileSize = static_cast<std::uint64_t>(size);
    const Text trouble = readMain(examined.main);
    check.headUsable = trouble == Text::none || trouble == Text::libraryTooNew;
    if (!check.headUsable) examined.main = {};
    check.outcome = CheckOutcome::checked;
    if (size == 0) return;  // a new library, that the next start gives its head
    examine(examined, check);
    // A newer version may have written it, unless nothing but that number is out of order.
    if (mayBeNewer(trouble, examined.main) && check.damage > 1) check.outcome = CheckOutcome::newer;
    if (check.outcome != CheckOutcome::checked || !repair || check.damage == 0) return;
    check.repaired = rewrite(examined);
    if (!check.repaired) check.outcome = CheckOutcome::notWritten;
}

}  // namespace

LibraryCheck checkLibrary(bool repair) {
    LibraryCheck check;
    const Fault fault = withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        if (storeState.open) return Fault::absent;
        const OpenResult opened = storeFileOpen(libraryFolder() + "storage.dat", false);
        if (opened == OpenResult::opened) checkOpened(check, repair);
        if (opened == OpenResult::absent) check.outcome = CheckOutcome::absent;
        if (opened == OpenResult::heldByAnother) check.outcome = CheckOutcome::held;
        return Fault::none;
    });
    const HoldLock hold(storeLock);
    if (storeState.open) check.outcome = CheckOutcome::held;
    if (!storeState.open) storeFileClose();
    if (fault == Fault::noMemory) check.outcome = CheckOutcome::unreadable;
    return check;
}

}  // namespace numalink
