// The steps that can be taken back, and taking them back. Undo and redo are the same change, the other way round.
#include "store/store_undo.h"

#include <algorithm>

#include "store/undo_steps.h"

namespace numalink {

namespace {

std::vector<UndoStep> undoSteps GUARDED_BY(storeLock);  // the newest last
std::vector<UndoStep> redoSteps GUARDED_BY(storeLock);
std::uint64_t redoArrivals GUARDED_BY(storeLock) = 0;  // storeState.arrivals when the redo steps were last sound
std::uint64_t lastGroup GUARDED_BY(storeLock) = 0;
thread_local std::uint64_t threadGroup = 0;  // of the UndoGroup that lives on this thread

std::uint64_t newGroup() {
    const HoldLock hold(storeLock);
    return ++lastGroup;
}

bool isTemporary(ItemId id) REQUIRES_LOCK(storeLock) {
    for (std::size_t steps = 0; steps <= storeState.slots.size(); steps++) {
        const std::size_t slot = slotOfId(id);
        if (slot == noSlot) return false;
        if (storeState.slots[slot].head.kind == kind::temporaryFolder) return true;
        id = storeState.slots[slot].head.parent;
    }
    return false;
}

bool holdsId(const std::vector<StoredItem> &items, ItemId id) {
    return std::ranges::find(items, id, &StoredItem::id) != items.end();
}

// The steps of the newest group as one. What came and left again within it is in neither list.
UndoStep newestGroup(const std::vector<UndoStep> &steps) {
    UndoStep joined{.group = steps.back().group, .items = {}, .cameInstead = {}};
    for (auto step = steps.rbegin(); step != steps.rend() && step->group == joined.group; ++step) {
        joined.items.insert(joined.items.end(), step->items.begin(), step->items.end());
        joined.cameInstead.insert(joined.cameInstead.end(), step->cameInstead.begin(), step->cameInstead.end());
    }
    const auto came = joined.cameInstead;
    std::erase_if(joined.cameInstead, [&](const ItemDigest &item) { return holdsId(joined.items, item.id); });
    std::erase_if(joined.items, [&](const StoredItem &item) {
        return std::ranges::find(came, item.id, &ItemDigest::id) != came.end();
    });
    return joined;
}

void dropNewestGroup(std::vector<UndoStep> &steps) {
    const std::uint64_t group = steps.back().group;
    while (!steps.empty() && steps.back().group == group) steps.pop_back();
}

// Which of those that came in place of others are still there as they came.
Fault readUnchanged(const std::vector<ItemDigest> &came, std::vector<StoredItem> &unchanged) REQUIRES_LOCK(storeLock) {
    for (const ItemDigest &item : came) {
        StoredItem now;
        if (slotOfId(item.id) == noSlot) continue;
        if (const Fault fault = readItem(item.id, now); fault != Fault::none) return fault;
        if (digestOf(now.head, now.data) == item.digest) unchanged.push_back(std::move(now));
    }
    return Fault::none;
}

bool nameTaken(const StoredItem &item, const std::vector<StoredItem> &leaving) REQUIRES_LOCK(storeLock) {
    return lowestSlot([&](const ItemHeader &head) {
               return isNamed(head, item.name, item.parent) && !holdsId(leaving, head.id);
           }) != noSlot;
}

// Gives each item a folder that is there, and a name that is free in it.
void findPlaces(std::vector<StoredItem> &items, const std::vector<StoredItem> &leaving) REQUIRES_LOCK(storeLock) {
    std::vector<StoredItem> ahead;
    for (StoredItem &item : items) {
        const bool comesToo = holdsId(ahead, item.parent);
        if (!comesToo && !isFolderId(item.parent)) item.parent = rootId;
        if (!comesToo && nameTaken(item, leaving)) {
            item.name = freeName(item.name, item.parent, item.kind);
            if (item.kind == kind::program) renameProgram(item.head, item.name);
        }
        if (isFolderKind(item.kind)) ahead.push_back(item);
    }
}

// Does the newest group of from, and makes the step that undoes this for to.
Fault takeBack(std::vector<UndoStep> &from, std::vector<UndoStep> &to, ItemId &shown) REQUIRES_LOCK(storeLock) {
    UndoStep step = newestGroup(from);
    UndoStep inverse{.group = ++lastGroup, .items = {}, .cameInstead = {}};
    if (const Fault fault = readUnchanged(step.cameInstead, inverse.items); fault != Fault::none) return fault;
    if (step.items.empty() && inverse.items.size() != step.cameInstead.size()) {
        from.clear();  // what came back was changed: it isn't taken away again
        return Fault::absent;
    }
    findPlaces(step.items, inverse.items);
    std::vector<ItemId> leaving;
    for (const StoredItem &item : inverse.items) leaving.push_back(item.id);
    for (const StoredItem &item : step.items) inverse.cameInstead.push_back({item.id, digestOf(item.head, item.data)});
    to.reserve(to.size() + 1);
    if (const Fault fault = putBack(step.items, leaving); fault != Fault::none) return fault;
    shown = step.items.empty() ? noItem : step.items.front().id;
    dropNewestGroup(from);
    to.push_back(std::move(inverse));
    redoArrivals = storeState.arrivals;
    return Fault::none;
}

bool redoIsSound() REQUIRES_LOCK(storeLock) {
    if (redoArrivals != storeState.arrivals) redoSteps.clear();
    return !redoSteps.empty();
}

}  // namespace

std::uint64_t digestOf(ByteView head, ByteView data) {
    std::uint64_t digest = 0xCBF29CE484222325;
    const auto add = [&](std::uint8_t byte) { digest = (digest ^ byte) * 0x100000001B3; };
    std::ranges::for_each(head, add);
    add(static_cast<std::uint8_t>(head.size()));
    std::ranges::for_each(data, add);
    return digest;
}

Fault undoStepFor(std::size_t slot, UndoStep &step) {
    const ItemId first = storeState.slots[slot].head.id;
    undoSteps.reserve(undoSteps.size() + 1);
    if (isTemporary(first)) return Fault::none;
    std::vector<bool> marks(storeState.slots.size());
    markWithContents(marks, slot);
    // From a folder to what lies in it, so that each stands behind its folder.
    std::vector<std::size_t> order{slot};
    marks[slot] = false;
    for (std::size_t next = 0; next < order.size(); next++) {
        StoredItem item;
        const ItemId id = storeState.slots[order[next]].head.id;
        if (const Fault fault = readItem(id, item); fault != Fault::none) return fault;
        step.items.push_back(std::move(item));
        for (std::size_t other = 0; other < marks.size(); other++) {
            if (!marks[other] || storeState.slots[other].head.parent != id) continue;
            marks[other] = false;
            order.push_back(other);
        }
    }
    return Fault::none;
}

void keepUndoStep(UndoStep step) {
    if (step.items.empty()) return;
    step.group = threadGroup != 0 ? threadGroup : ++lastGroup;
    undoSteps.push_back(std::move(step));
    redoSteps.clear();
}

void forgetUndoSteps() {
    undoSteps.clear();
    redoSteps.clear();
}

UndoGroup::UndoGroup() { threadGroup = newGroup(); }
UndoGroup::~UndoGroup() { threadGroup = 0; }

std::optional<UndoOffer> storeUndoOffer() {
    const HoldLock hold(storeLock);
    if (undoSteps.empty()) return std::nullopt;
    const UndoStep step = newestGroup(undoSteps);
    return UndoOffer{.name = step.items.empty() ? std::string() : step.items.front().name,
                     .count = step.items.size(),
                     .replacement = !step.cameInstead.empty()};
}

bool storeCanRedo() {
    const HoldLock hold(storeLock);
    return redoIsSound();
}

bool storeUndo(ItemId &shown) {
    return storeTold(withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        return undoSteps.empty() ? Fault::absent : takeBack(undoSteps, redoSteps, shown);
    }));
}

bool storeRedo(ItemId &shown) {
    return storeTold(withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        return redoIsSound() ? takeBack(redoSteps, undoSteps, shown) : Fault::absent;
    }));
}

}  // namespace numalink
