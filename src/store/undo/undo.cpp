// The steps that can be taken back, and taking them back. Undo and redo are the same change, the other way round.
#include "store/undo/undo.h"

#include <algorithm>

#include "calculator/charset.h"
#include "platform/letter_case.h"
#include "store/undo/keep_for_undo.h"

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

// The steps of the newest group as one. What came and left again within it is in neither list. The items lie in steps.
struct NewestGroup {
    std::vector<const StoredItem *> items;
    std::vector<ItemDigest> came;
};

NewestGroup newestGroup(const std::vector<UndoStep> &steps) {
    NewestGroup joined;
    std::vector<ItemId> left, came;
    for (auto step = steps.rbegin(); step != steps.rend() && step->group == steps.back().group; ++step) {
        for (const StoredItem &item : step->items) left.push_back(item.id);
        for (const ItemDigest &item : step->cameInstead) came.push_back(item.id);
        for (const StoredItem &item : step->items) joined.items.push_back(&item);
        joined.came.insert(joined.came.end(), step->cameInstead.begin(), step->cameInstead.end());
    }
    std::erase_if(joined.came, [&](const ItemDigest &item) { return std::ranges::count(left, item.id) > 0; });
    std::erase_if(joined.items, [&](const StoredItem *item) { return std::ranges::count(came, item->id) > 0; });
    return joined;
}

UndoOffer offerOf(const NewestGroup &newest) {
    return {.name = newest.items.empty() ? std::string() : newest.items.front()->name,
            .count = newest.items.size(),
            .replacement = !newest.came.empty()};
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
        if (digestOf(now, now.head, now.data) == item.digest) unchanged.push_back(std::move(now));
    }
    return Fault::none;
}

bool nameTaken(const StoredItem &item, const std::vector<StoredItem> &leaving) REQUIRES_LOCK(storeLock) {
    return lowestSlot([&](const ItemHeader &head) {
               return isNamed(head, item.name, item.parent) && !holdsId(leaving, head.id);
           }) != noSlot;
}

// Gives each item a folder that is there, and a name that is free in it. What comes back with its folder keeps its
// name, and so do items that bore one name side by side.
void findPlaces(std::vector<StoredItem> &items, const std::vector<StoredItem> &leaving) REQUIRES_LOCK(storeLock) {
    std::vector<ItemId> homeless;
    for (StoredItem &item : items) {
        if (holdsId(items, item.parent) || isFolderId(item.parent)) continue;
        item.parent = rootId;
        homeless.push_back(item.id);
    }
    for (StoredItem &item : items) {
        const auto othersBear = [&](std::string_view name) {
            return std::ranges::any_of(items, [&](const StoredItem &other) {
                return other.id != item.id && other.parent == item.parent && equalWithoutCase(other.name, name);
            });
        };
        if (holdsId(items, item.parent)) continue;
        const bool isHomeless = std::ranges::count(homeless, item.id) > 0;
        if (!nameTaken(item, leaving) && !(isHomeless && othersBear(item.name))) continue;
        item.name = freeName(item.name, item.parent, item.kind, othersBear);
        if (item.kind == kind::program) renameProgram(item.head, item.name);
    }
}

// Does the newest group of from, and makes the step that undoes this for to.
Fault takeBack(std::vector<UndoStep> &from, std::vector<UndoStep> &to, TakenBack &done) REQUIRES_LOCK(storeLock) {
    const NewestGroup newest = newestGroup(from);
    TakenBack doing{.step = offerOf(newest)};
    UndoStep inverse{.group = ++lastGroup, .items = {}, .cameInstead = {}};
    if (const Fault fault = readUnchanged(newest.came, inverse.items); fault != Fault::none) return fault;
    if (newest.items.empty() && inverse.items.size() != newest.came.size()) {
        dropNewestGroup(from);
        done.changedSince = true;
        return Fault::absent;
    }
    std::vector<StoredItem> items;
    for (const StoredItem *item : newest.items) items.push_back(*item);
    findPlaces(items, inverse.items);
    std::vector<ItemId> leaving;
    for (const StoredItem &item : inverse.items) leaving.push_back(item.id);
    for (const StoredItem &item : items) inverse.cameInstead.push_back({item.id, digestOf(item, item.head, item.data)});
    to.reserve(to.size() + 1);
    if (const Fault fault = putBack(items, leaving); fault != Fault::none) return fault;
    if (!items.empty()) doing.shown = items.front().id;
    done = std::move(doing);
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

std::uint64_t digestOf(const ItemEntry &entry, ByteView head, ByteView data) {
    std::uint64_t digest = 0xCBF29CE484222325;
    const auto add = [&](auto part) { digest = (digest ^ part) * 0x100000001B3; };
    for (const char code : entry.name) add(static_cast<std::uint8_t>(code));
    for (const std::uint64_t number :
         {std::uint64_t{entry.parent}, std::uint64_t{entry.kind}, std::uint64_t{head.size()}})
        add(number);
    std::ranges::for_each(head, add);
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
    const auto after = std::ranges::find(undoSteps.rbegin(), undoSteps.rend(), step.group, &UndoStep::group);
    undoSteps.insert(after == undoSteps.rend() ? undoSteps.end() : after.base(), std::move(step));
    redoSteps.clear();
}

void forgetUndoSteps() {
    undoSteps.clear();
    redoSteps.clear();
}

UndoGroup::UndoGroup() { threadGroup = newGroup(); }
UndoGroup::~UndoGroup() { threadGroup = 0; }

std::optional<UndoOffer> storeUndoOffer() {
    std::optional<UndoOffer> offer;
    withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        if (!undoSteps.empty()) offer = offerOf(newestGroup(undoSteps));
        return Fault::none;
    });
    return offer;
}

bool storeCanRedo() {
    const HoldLock hold(storeLock);
    return redoIsSound();
}

bool storeUndo(TakenBack &done) {
    return storeTold(withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        return undoSteps.empty() ? Fault::absent : takeBack(undoSteps, redoSteps, done);
    }));
}

bool storeRedo(TakenBack &done) {
    return storeTold(withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        return redoIsSound() ? takeBack(redoSteps, undoSteps, done) : Fault::absent;
    }));
}

}  // namespace numalink
