#include "store/library_check.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "platform/program_folder.h"
#include "store/store_changes.h"
#include "store/store_check.h"
#include "store/store_copy.h"

namespace numalink {

namespace {

constexpr std::size_t scanBlock = std::size_t{64} * 1024;  // bytes
constexpr int textTooNew = 119;
constexpr ItemId idLimit = noItem / 2;  // no library lives to see it: a next id from here on is damage

// What an examination has found: the head as it lies, and the records that can be kept.
struct Examined {
    MainHeader main{};
    std::vector<Slot> slots;             // of the table
    std::vector<std::uint64_t> offsets;  // of the records found outside it
    std::vector<ItemHeader> found;       // their heads
    std::uint64_t fileSize = 0;
};

bool readHead(std::uint64_t offset, ItemHeader &head) REQUIRES_LOCK(storeLock) {
    return storeFileRead(offset, {reinterpret_cast<std::uint8_t *>(&head), sizeof head});
}

// The next place from this one on where the signature of a record lies, or limit.
std::uint64_t nextSignature(std::uint64_t from, std::uint64_t limit) REQUIRES_LOCK(storeLock) {
    Bytes block;
    while (limit - std::min(from, limit) >= sizeof itemSignature) {
        block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(scanBlock, limit - from)));
        if (!storeFileRead(from, block)) return limit;
        const auto hit = std::search(block.begin(), block.end(), std::begin(itemSignature), std::end(itemSignature));
        if (hit != block.end()) return from + static_cast<std::uint64_t>(hit - block.begin());
        from += block.size() - (sizeof itemSignature - 1);
    }
    return limit;
}

// Whether a record's size can be believed: behind it lies another record or the end, or within it none.
bool sizeIsCredible(const ItemHeader &head, std::uint64_t offset, std::uint64_t limit) REQUIRES_LOCK(storeLock) {
    const std::uint64_t end = offset + recordSize(head);
    if (end == limit || nextSignature(end, std::min(limit, end + sizeof itemSignature)) == end) return true;
    const std::uint64_t last = std::min(limit, end + sizeof itemSignature - 1);
    for (std::uint64_t at = nextSignature(offset + sizeof head, last); at < last; at = nextSignature(at + 1, last)) {
        ItemHeader inner{};
        if (readHead(at, inner) && recordIsSound(inner, at, limit)) return false;
    }
    return true;
}

// Looks through one stretch that no record of the table covers.
void searchStretch(Examined &examined, std::set<ItemId> &ids, std::uint64_t from, std::uint64_t limit)
    REQUIRES_LOCK(storeLock) {
    for (std::uint64_t at = nextSignature(from, limit); at < limit; at = nextSignature(at, limit)) {
        ItemHeader head{};
        if (!readHead(at, head) || !recordIsSound(head, at, limit) || !sizeIsCredible(head, at, limit)) {
            at++;
            continue;
        }
        const bool ownId = ids.insert(head.id).second;
        const bool listed = std::ranges::count(examined.main.offsets, at) > 0;
        if (ownId || listed) {
            examined.offsets.push_back(at);
            examined.found.push_back(head);
            if (!ownId) examined.found.back().id = noItem;  // gets one of its own
        }
        at += recordSize(head);
    }
}

// Behind the end of the records lies what was deleted, unless the head can't be believed.
void searchFile(Examined &examined, bool headLies) REQUIRES_LOCK(storeLock) {
    std::set<ItemId> ids;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> covered;
    for (std::size_t slot = 0; slot < examined.slots.size(); slot++) {
        if (!examined.slots[slot].sound) continue;
        ids.insert(examined.slots[slot].head.id);
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

void examine(Examined &examined, LibraryCheck &check) REQUIRES_LOCK(storeLock) {
    bool headLies = !check.headUsable;
    if (check.headUsable) {
        readSlots(examined.main, examined.slots);
        check.damage = checkStore(examined.main, examined.fileSize, examined.slots);
        const auto lost = std::ranges::count(examined.slots, false, &Slot::sound);
        check.circles = static_cast<std::uint32_t>(foldersInCircle(examined.slots).size());
        if (examined.main.nextId >= idLimit) check.damage++;
        headLies = check.damage > static_cast<std::uint32_t>(lost) + check.circles;
    }
    searchFile(examined, headLies);
    check.damage += static_cast<std::uint32_t>(examined.found.size()) + (check.headUsable ? 0 : 1);
    for (std::size_t slot = 0; slot < examined.slots.size(); slot++)
        check.records.push_back(recordOf(examined.slots[slot].head, examined.main.offsets[slot],
                                         examined.slots[slot].sound ? RecordFate::sound : RecordFate::lost));
    for (std::size_t i = 0; i < examined.found.size(); i++)
        check.records.push_back(recordOf(examined.found[i], examined.offsets[i], RecordFate::found));
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
    for (std::size_t i = 0; i < examined.found.size() && kept.size() < storeSlotCount; i++) {
        kept.push_back({examined.found[i], true});
        offsets.push_back(examined.offsets[i]);
    }
    MainHeader main = emptyMain();
    main.formatNumber = std::min(examined.main.formatNumber, storeNewestFormat);
    if (examined.main.formatNumber == 0) main.formatNumber = storeNewestFormat;
    main.nextId = examined.main.nextId < idLimit ? examined.main.nextId : 0;
    std::vector<Slot> known = kept;
    std::erase_if(known, [](const Slot &slot) { return slot.head.id >= idLimit; });
    main.nextId = safeNextId(main, known);
    for (Slot &slot : kept)
        if (slot.head.id >= idLimit) renumber(kept, slot.head, main.nextId++);
    const std::vector<ItemId> circle = foldersInCircle(kept);
    file.resize(sizeof main);
    for (std::size_t i = 0; i < kept.size(); i++) {
        const ItemHeader head = keptHead(kept[i], circle);
        const std::size_t place = file.size();
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

bool rewrite(const Examined &examined) REQUIRES_LOCK(storeLock) {
    Bytes file;
    if (!composeFile(examined, file) || !storeFileKeepCopy()) return false;
    const std::uint64_t size = file.size();
    changeBegin();
    changeWrite(0, std::move(file));
    if (changeCommit() != ChangeResult::done) return false;
    storeFileCut(size);
    return true;
}

void checkOpened(LibraryCheck &check, bool repair) REQUIRES_LOCK(storeLock) {
    Recovery recovery = storeFileRecover(repair);
    check.interrupted = recovery == Recovery::broughtBack;
    if (recovery == Recovery::foreign && repair && storeJournalSetAside().empty()) recovery = Recovery::failed;
    const std::int64_t size = storeFileSize();
    if (recovery == Recovery::unread || recovery == Recovery::failed || size < 0) return;
    Examined examined;
    examined.fileSize = static_cast<std::uint64_t>(size);
    const int fault = readMain(examined.main);
    if (fault == textTooNew) return;
    check.headUsable = fault == 0;
    if (!check.headUsable) examined.main = {};
    check.outcome = CheckOutcome::checked;
    if (size == 0) return;  // a new library, that the next start gives its head
    examine(examined, check);
    if (!repair || check.damage == 0) return;
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
