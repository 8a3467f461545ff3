// The operations on single items: reading, adding, storing again, altering in place, deleting.
#include <algorithm>
#include <cstring>
#include <functional>

#include "calculator/program_info.h"
#include "store/file/changes.h"
#include "store/undo/keep_for_undo.h"

namespace numalink {

namespace {

ItemHeader makeHead(const NewItem &item, std::string_view name, ItemId id) {
    ItemHeader head{};
    std::memcpy(head.signature, itemSignature, sizeof itemSignature);
    name.copy(head.name, storeNameLimit);
    head.headSize = static_cast<std::uint32_t>(item.head.size());
    head.dataSize = static_cast<std::uint32_t>(item.data.size());
    head.kind = item.kind;
    head.flags = isFolderKind(item.kind) ? item.flags : 0;
    head.id = id;
    head.parent = item.parent;
    return head;
}

bool fitsRecord(const NewItem &item) { return item.head.size() <= UINT32_MAX && item.data.size() <= UINT32_MAX; }

// The record that an add replaces, or noSlot: calculator data of the same kind and name, never a folder.
std::size_t slotToReplace(const NewItem &item, std::string_view name) REQUIRES_LOCK(storeLock) {
    if (item.whenTaken != NameTaken::replaceSameKind || isFolderKind(item.kind)) return noSlot;
    return lowestSlot(
        [&](const ItemHeader &head) { return head.kind == item.kind && isNamed(head, name, item.parent); });
}

std::vector<bool> marked(std::size_t slot) REQUIRES_LOCK(storeLock) {
    std::vector<bool> marks(slot == noSlot ? 0 : storeState.slots.size());
    if (slot != noSlot) marks[slot] = true;
    return marks;
}

// Whether an item of this kind can have this parent: a folder, which the temporary one is for items alone.
bool mayLieIn(ItemKind itemKind, ItemId parent) REQUIRES_LOCK(storeLock) {
    if (!isFolderId(parent)) return false;
    const std::size_t slot = slotOfId(parent);
    return !isFolderKind(itemKind) || slot == noSlot || storeState.slots[slot].head.kind != kind::temporaryFolder;
}

Fault parentFault(std::size_t slot, ItemId newParent) REQUIRES_LOCK(storeLock) {
    const ItemHeader &head = storeState.slots[slot].head;
    if (newParent == head.parent) return Fault::none;
    if (!mayLieIn(head.kind, newParent)) return Fault::noFolder;
    return isFolderKind(head.kind) && liesWithin(newParent, head.id) ? Fault::intoItself : Fault::none;
}

// Ends a change: its step is kept once it is done.
Fault keptOnceDone(Fault fault, UndoStep step) REQUIRES_LOCK(storeLock) {
    if (fault == Fault::none) keepUndoStep(std::move(step));
    return fault;
}

Fault writeItem(ItemId id, const NewItem &item) REQUIRES_LOCK(storeLock) {
    const std::size_t slot = slotOfId(id);
    if (slot == noSlot) return Fault::absent;
    if (!fitsRecord(item)) return Fault::tooLarge;
    if (const Fault fault = parentFault(slot, item.parent); fault != Fault::none) return fault;
    const bool becomesFolder = isFolderKind(item.kind) && !isFolderKind(storeState.slots[slot].head.kind);
    if (becomesFolder && liesWithin(item.parent, id)) return Fault::intoItself;
    if (!mayLieIn(item.kind, item.parent) && becomesFolder) return Fault::noFolder;
    const NewRecord record{makeHead(item, storedName(item.name), id), item.head, item.data};
    const Becoming becoming{
        .name = storedName(item.name), .parent = item.parent, .kind = item.kind, .head = item.head, .data = item.data};
    UndoStep step = newUndoStep(UndoAct::edit, storedName(item.name));
    if (const Fault fault = noteBecoming(slot, becoming, step); fault != Fault::none) return fault;
    return keptOnceDone(changeRecords(marked(slot), {&record, 1}, storeState.main.nextId), std::move(step));
}

// The first id from this one on that a new item may have, or noItem when all are used up: in a sound library that is
// ahead of idLimit, so that it stays one. Passed over is what a record without a folder names as its parent, so that
// nothing comes to lie in a folder that it never was in, and the id of a record with damage.
ItemId freshId(ItemId id) REQUIRES_LOCK(storeLock) {
    const ItemId limit = id < idLimit ? idLimit - 1 : noItem;
    const auto names = [&](const Slot &slot) { return slot.head.parent == id || slot.head.id == id; };
    while (id < limit && std::ranges::any_of(storeState.slots, names)) id++;
    return id < limit ? id : noItem;
}

// Runs one change of an existing record with the lock held, and tells its fault without it.
template <typename Change>
bool changeItem(ItemId id, Change change) {
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        const std::size_t slot = slotOfId(id);
        return slot == noSlot ? Fault::absent : change(slot);
    }));
}

Patch numberPatch(std::size_t slot, std::size_t offset, std::uint32_t value) {
    Patch patch{slot, offset, Bytes(sizeof value)};
    writeLittle32(patch.bytes, 0, value);
    return patch;
}

Fault addItems(const std::vector<NewItem> &items, std::vector<ItemId> &ids) REQUIRES_LOCK(storeLock) {
    std::vector<NewRecord> records;
    ItemId nextId = storeState.main.nextId;
    for (const NewItem &item : items) {
        const ItemId id = freshId(nextId);
        if (id == noItem) return Fault::full;
        if (!mayLieIn(item.kind, item.parent)) return Fault::noFolder;
        if (!fitsRecord(item)) return Fault::tooLarge;
        records.push_back({makeHead(item, storedName(item.name), id), item.head, item.data});
        ids.push_back(id);
        nextId = id + 1;
    }
    return changeRecords({}, records, nextId);
}

Fault moveItems(std::span<const ItemMove> moves) REQUIRES_LOCK(storeLock) {
    std::vector<Patch> patches;
    UndoStep step = newUndoStep(UndoAct::move, "");
    for (const ItemMove &move : moves) {
        const std::size_t slot = slotOfId(move.id);
        if (slot == noSlot) return Fault::absent;
        if (step.name.empty()) step.name = entryOf(storeState.slots[slot].head).name;
        // Two folders moved at once could come to hold each other, each move being sound by itself.
        if (moves.size() > 1 && isFolderKind(storeState.slots[slot].head.kind)) return Fault::intoItself;
        if (const Fault fault = parentFault(slot, move.newParent); fault != Fault::none) return fault;
        if (const Fault fault = noteBecoming(slot, {.parent = move.newParent}, step); fault != Fault::none)
            return fault;
        patches.push_back(numberPatch(slot, offsetof(ItemHeader, parent), move.newParent));
    }
    const Fault fault = changeInPlace(patches);
    if (fault == Fault::none) storeState.arrivals++;
    return keptOnceDone(fault, std::move(step));
}

Fault deleteItems(std::span<const ItemId> ids) REQUIRES_LOCK(storeLock) {
    std::vector<bool> leaving(storeState.slots.size());
    UndoStep step = newUndoStep(UndoAct::deletion, "");
    for (const ItemId id : ids) {
        const std::size_t slot = slotOfId(id);
        if (slot == noSlot) return Fault::absent;
        if (leaving[slot]) continue;  // it goes with a folder of the list
        if (step.name.empty()) step.name = entryOf(storeState.slots[slot].head).name;
        if (const Fault fault = noteLeaving(slot, step); fault != Fault::none) return fault;
        markWithContents(leaving, slot);
    }
    return keptOnceDone(changeRecords(leaving, {}, storeState.main.nextId), std::move(step));
}

template <typename Fits>
std::vector<ItemEntry> entriesWhere(Fits fits) {
    std::vector<ItemEntry> entries;
    const bool whole = tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        for (const Slot &slot : storeState.slots)
            if (slot.sound && fits(slot.head)) entries.push_back(entryOf(slot.head));
        return Fault::none;
    }));
    if (!whole) entries.clear();
    std::ranges::sort(entries, {}, &ItemEntry::id);
    return entries;
}

}  // namespace

bool liesWithin(ItemId id, ItemId folder) {
    for (std::size_t steps = 0; steps <= storeState.slots.size(); steps++) {
        if (id == folder) return true;
        const std::size_t slot = slotOfId(id);
        if (slot == noSlot) return false;
        id = storeState.slots[slot].head.parent;
    }
    return false;
}

void renameProgram(Bytes &head, std::string_view name) {
    if (head.size() != programInfoSize) return;
    std::fill_n(head.begin() + programNameOffset, programNameLimit + 1, std::uint8_t{0});
    std::ranges::copy(name.substr(0, programNameLimit), head.begin() + programNameOffset);
}

void markWithContents(std::vector<bool> &marks, std::size_t first) {
    const std::vector<Slot> &slots = storeState.slots;
    std::vector<std::size_t> open{first};
    marks[first] = true;
    while (!open.empty()) {
        const ItemHeader &folder = slots[open.back()].head;
        open.pop_back();
        if (!isFolderKind(folder.kind)) continue;
        for (std::size_t slot = 0; slot < slots.size(); slot++) {
            if (marks[slot] || !slots[slot].sound || slots[slot].head.parent != folder.id) continue;
            marks[slot] = true;
            open.push_back(slot);
        }
    }
}

Fault readItem(ItemId id, StoredItem &item) {
    const std::size_t slot = slotOfId(id);
    if (slot == noSlot) return Fault::absent;
    const ItemHeader &head = storeState.slots[slot].head;
    const std::uint64_t offset = storeState.main.offsets[slot];
    ItemHeader inFile{};
    StoredItem read;
    static_cast<ItemEntry &>(read) = entryOf(head);
    read.head.resize(head.headSize);
    read.data.resize(head.dataSize);
    const bool whole = storeFileRead(offset, {reinterpret_cast<std::uint8_t *>(&inFile), sizeof inFile}) &&
                       storeFileRead(offset + sizeof head, read.head) &&
                       storeFileRead(offset + sizeof head + head.headSize, read.data);
    if (storeState.slots[slot].corrected) {
        inFile.kind = head.kind;
        inFile.parent = head.parent;
    }
    // Another head than the one in memory: somebody has written to the file in spite of its lock.
    if (!whole || std::memcmp(&inFile, &head, sizeof head) != 0) return Fault::itemUnread;
    item = std::move(read);
    return Fault::none;
}

Fault putBack(const std::vector<StoredItem> &items, const std::vector<ItemId> &leaving) {
    std::vector<bool> marks(storeState.slots.size());
    for (const ItemId id : leaving) {
        const std::size_t slot = slotOfId(id);
        if (slot == noSlot) return Fault::absent;
        marks[slot] = true;
    }
    std::vector<NewRecord> records;
    ItemId nextId = storeState.main.nextId;
    for (const StoredItem &item : items) {
        const auto isParent = [&](const StoredItem &other) {
            return other.id == item.parent && isFolderKind(other.kind);
        };
        const auto hasId = [&](const NewRecord &record) { return record.head.id == item.id; };
        const std::size_t slot = slotOfId(item.id);
        const bool taken = (slot != noSlot && !marks[slot]) || std::ranges::any_of(records, hasId);
        if (taken || item.id <= rootId || item.id == noItem) return Fault::absent;
        if (!mayLieIn(item.kind, item.parent) && std::ranges::none_of(items, isParent)) return Fault::noFolder;
        const NewItem made{.name = item.name, .parent = item.parent, .kind = item.kind, .head = {}, .data = {}};
        ItemHeader head = makeHead(made, storedName(item.name), item.id);
        head.flags = item.flags;
        head.headSize = static_cast<std::uint32_t>(item.head.size());
        head.dataSize = static_cast<std::uint32_t>(item.data.size());
        records.push_back({head, item.head, item.data});
        nextId = std::max(nextId, item.id + 1);
    }
    return changeRecords(marks, records, nextId);
}

Fault addItem(const NewItem &item, ItemId &id, std::string *renamed) {
    id = noItem;
    if (!storeState.open) return Fault::absent;
    const ItemId newId = freshId(storeState.main.nextId);
    if (newId == noItem) return Fault::full;
    if (!mayLieIn(item.kind, item.parent)) return Fault::noFolder;
    if (!fitsRecord(item)) return Fault::tooLarge;
    std::string name(storedName(item.name));
    Bytes head = item.head;
    const std::size_t replaced = slotToReplace(item, name);
    if (replaced == noSlot && item.whenTaken != NameTaken::keepBoth) {
        name = freeName(name, item.parent, item.kind);
        if (item.kind == kind::program && name != storedName(item.name)) renameProgram(head, name);
    }
    const NewRecord record{makeHead(item, name, newId), head, item.data};
    UndoStep step = newUndoStep(UndoAct::replacement, name);
    if (replaced == noSlot) {
        noteArrival(entryOf(record.head), head, item.data, step);
    } else {
        if (const Fault fault = noteLeaving(replaced, step); fault != Fault::none) return fault;
        if (!step.changes.empty()) noteReplacing(entryOf(record.head), head, item.data, step);
    }
    const Fault fault = changeRecords(marked(replaced), {&record, 1}, newId + 1);
    if (fault != Fault::none) return fault;
    keepUndoStep(std::move(step));
    id = newId;
    if (renamed) *renamed = std::move(name);
    return Fault::none;
}

Fault addFolders(ItemId parent, const std::vector<std::string_view> &names, ItemId &id) {
    std::vector<NewRecord> records;
    UndoStep step = newUndoStep(UndoAct::import, "");
    ItemId nextId = storeState.main.nextId;
    for (const std::string_view name : names) {
        const ItemId newId = freshId(nextId);
        if (newId == noItem) return Fault::full;
        const NewItem folder{.name = records.empty() ? freeName(name, parent, kind::folder) : std::string(name),
                             .parent = parent,
                             .kind = kind::folder,
                             .head = {},
                             .data = {},
                             .flags = folderOpenFlag};
        records.push_back({makeHead(folder, folder.name, newId), {}, {}});
        noteArrival(entryOf(records.back().head), {}, {}, step);
        parent = newId;
        nextId = newId + 1;
    }
    const Fault fault = changeRecords({}, records, nextId);
    if (fault == Fault::none) id = parent;
    return keptOnceDone(fault, std::move(step));
}

Fault resetTemp(const std::vector<ItemId> &kept) {
    std::vector<bool> leaving(storeState.slots.size());
    for (std::size_t slot = 0; slot < leaving.size(); slot++) {
        const Slot &candidate = storeState.slots[slot];
        if (candidate.sound && candidate.head.kind == kind::temporaryFolder) markWithContents(leaving, slot);
    }
    bool keepsSome = false;
    for (const ItemId id : kept) {
        std::size_t slot = slotOfId(id);
        if (slot == noSlot || !leaving[slot]) continue;
        keepsSome = true;
        // With the folders that it lies in.
        for (; slot != noSlot && leaving[slot]; slot = slotOfId(storeState.slots[slot].head.parent))
            leaving[slot] = false;
    }
    if (keepsSome && std::ranges::none_of(leaving, std::identity{})) return Fault::none;
    if (keepsSome) return changeRecords(leaving, {}, storeState.main.nextId);
    const ItemId id = freshId(storeState.main.nextId);
    if (id == noItem) return Fault::full;
    const NewItem temp{.name = temporaryFolderName, .kind = kind::temporaryFolder, .head = {}, .data = {}};
    const NewRecord record{makeHead(temp, temp.name, id), {}, {}};
    return changeRecords(leaving, {&record, 1}, id + 1);
}

bool tempIsFresh() {
    const Slot *temp = nullptr;
    for (const Slot &slot : storeState.slots) {
        if (!slot.sound || slot.head.kind != kind::temporaryFolder) continue;
        if (temp != nullptr || slot.head.parent != rootId) return false;
        temp = &slot;
    }
    return temp != nullptr &&
           std::ranges::none_of(storeState.slots, [&](const Slot &slot) { return slot.head.parent == temp->head.id; });
}

int storeFindSlot(ItemId id) {
    const HoldLock hold(storeLock);
    return static_cast<int>(slotOfId(id));
}

std::optional<ItemEntry> storeReadEntry(ItemId id) {
    std::optional<ItemEntry> entry;
    tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        const std::size_t slot = slotOfId(id);
        if (slot != noSlot) entry = entryOf(storeState.slots[slot].head);
        return Fault::none;
    }));
    return entry;
}

bool storeReadItem(ItemId id, StoredItem &item) {
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return readItem(id, item); }));
}

std::vector<ItemEntry> storeListItems() {
    return entriesWhere([](const ItemHeader &) { return true; });
}

std::vector<ItemEntry> storeListChildren(ItemId parent) {
    return entriesWhere([&](const ItemHeader &head) { return head.parent == parent; });
}

ItemId storeNextId() {
    const HoldLock hold(storeLock);
    return storeState.main.nextId;
}

ItemId storeAddItem(const NewItem &item, std::string *renamed) {
    ItemId id = noItem;
    tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return addItem(item, id, renamed); }));
    return id;
}

std::vector<ItemId> storeAddItems(const std::vector<NewItem> &items) {
    std::vector<ItemId> ids;
    if (!tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return addItems(items, ids); }))) ids.clear();
    return ids;
}

bool storeWriteItem(ItemId id, const NewItem &item) {
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return writeItem(id, item); }));
}

bool storeRewriteHead(ItemId id, ByteView head) {
    return changeItem(id, [&](std::size_t slot) REQUIRES_LOCK(storeLock) {
        if (head.size() != storeState.slots[slot].head.headSize) return Fault::wrongSize;
        if (head.empty()) return Fault::none;
        UndoStep step = newUndoStep(UndoAct::edit, entryOf(storeState.slots[slot].head).name);
        if (const Fault fault = noteBecoming(slot, {.head = head}, step); fault != Fault::none) return fault;
        const Patch patch{slot, sizeof(ItemHeader), {head.begin(), head.end()}};
        return keptOnceDone(changeInPlace({&patch, 1}), std::move(step));
    });
}

bool storeRename(ItemId id, std::string_view name, ByteView head) {
    return changeItem(id, [&](std::size_t slot) REQUIRES_LOCK(storeLock) {
        if (!head.empty() && head.size() != storeState.slots[slot].head.headSize) return Fault::wrongSize;
        UndoStep step = newUndoStep(UndoAct::rename, storedName(name));
        Becoming becoming{.name = storedName(name)};
        if (!head.empty()) becoming.head = head;
        if (const Fault fault = noteBecoming(slot, becoming, step); fault != Fault::none) return fault;
        Bytes field(sizeof(ItemHeader::name));
        std::ranges::copy(storedName(name), field.begin());
        const Patch patches[] = {{slot, offsetof(ItemHeader, name), std::move(field)},
                                 {slot, sizeof(ItemHeader), {head.begin(), head.end()}}};
        return keptOnceDone(changeInPlace(patches), std::move(step));
    });
}

bool storePutBack(const std::vector<StoredItem> &items, const std::vector<ItemId> &leaving) {
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return putBack(items, leaving); }));
}

bool storeMove(ItemId id, ItemId newParent) {
    const ItemMove move{id, newParent};
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return moveItems({&move, 1}); }));
}

bool storeMoveItems(const std::vector<ItemMove> &moves) {
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return moveItems(moves); }));
}

bool storeSetFlags(ItemId id, std::uint32_t value) {
    return changeItem(id, [&](std::size_t slot) REQUIRES_LOCK(storeLock) {
        const Patch patch = numberPatch(slot, offsetof(ItemHeader, flags), value);
        return changeInPlace({&patch, 1});
    });
}

std::uint32_t storeGetFlags(ItemId id) {
    const auto entry = storeReadEntry(id);
    return entry ? entry->flags : 0;
}

bool storeDelete(ItemId id) { return storeDeleteItems({&id, 1}); }

bool storeDeleteItems(std::span<const ItemId> ids) {
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return deleteItems(ids); }));
}

bool storeDropFolder(ItemId id) {
    return changeItem(id, [&](std::size_t slot) REQUIRES_LOCK(storeLock) {
        const auto liesIn = [&](const ItemHeader &head) { return head.parent == id; };
        const bool empty = isFolderKind(storeState.slots[slot].head.kind) && lowestSlot(liesIn) == noSlot;
        return empty ? changeRecords(marked(slot), {}, storeState.main.nextId) : Fault::absent;
    });
}

}  // namespace numalink
