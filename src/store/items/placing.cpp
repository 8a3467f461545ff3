// Many items to their places in one change, with what they take the place of.
#include <algorithm>

#include "calculator/program_info.h"
#include "store/file/changes.h"
#include "store/undo/keep_for_undo.h"

namespace numalink {

namespace {

// What one placing changes in its record, and in the step.
Fault place(const ItemPlacing &placing, std::vector<Patch> &patches, UndoStep &step) REQUIRES_LOCK(storeLock) {
    const std::size_t slot = slotOfId(placing.id);
    if (slot == noSlot) return Fault::absent;
    const ItemEntry entry = entryOf(storeState.slots[slot].head);
    if (isFolderKind(entry.kind)) return Fault::intoItself;
    if (!isFolderId(placing.newParent)) return Fault::noFolder;
    Becoming becoming{.parent = placing.newParent};
    Bytes parent(sizeof(ItemHeader::parent));
    writeLittle32(parent, 0, placing.newParent);
    patches.push_back({slot, offsetof(ItemHeader, parent), std::move(parent)});
    StoredItem item;
    const std::string_view name = storedName(placing.name);
    if (!name.empty() && name != entry.name) {
        becoming.name = name;
        Bytes field(sizeof(ItemHeader::name));
        std::ranges::copy(name, field.begin());
        patches.push_back({slot, offsetof(ItemHeader, name), std::move(field)});
        if (isTextKind(entry.kind)) {
            if (const Fault fault = readItem(placing.id, item); fault != Fault::none) return fault;
            renameProgram(item.head, name);
            becoming.head = item.head;
            patches.push_back({slot, sizeof(ItemHeader), item.head});
        }
    }
    if (step.name.empty()) step.name = name.empty() ? entry.name : std::string(name);
    return noteBecoming(slot, becoming, step);
}

Fault placeItems(const std::vector<ItemPlacing> &placings, std::span<const ItemId> leaving) REQUIRES_LOCK(storeLock) {
    std::vector<bool> marks(storeState.slots.size());
    std::vector<Patch> patches;
    UndoStep step = newUndoStep(UndoAct::move, "");
    for (const ItemPlacing &placing : placings)
        if (const Fault fault = place(placing, patches, step); fault != Fault::none) return fault;
    for (const ItemId id : leaving) {
        const std::size_t slot = slotOfId(id);
        if (slot == noSlot || isFolderId(id)) return Fault::absent;
        if (marks[slot]) continue;
        if (const Fault fault = noteLeaving(slot, step); fault != Fault::none) return fault;
        marks[slot] = true;
    }
    if (std::ranges::any_of(
            placings, [&](const ItemPlacing &placing) REQUIRES_LOCK(storeLock) { return marks[slotOfId(placing.id)]; }))
        return Fault::absent;
    const Fault fault = leaving.empty() ? changeInPlace(patches) : changeAndRemove(marks, patches);
    if (fault != Fault::none) return fault;
    if (leaving.empty()) storeState.arrivals++;
    keepUndoStep(std::move(step));
    return Fault::none;
}

}  // namespace

bool storePlaceItems(const std::vector<ItemPlacing> &placings, std::span<const ItemId> leaving) {
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return placeItems(placings, leaving); }));
}

}  // namespace numalink
