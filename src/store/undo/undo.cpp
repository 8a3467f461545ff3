// The steps that can be taken back, and taking them back. Undo and redo are the same change, the other way round.
#include "store/undo/undo.h"

#include <algorithm>

#include "calculator/charset.h"
#include "platform/letter_case.h"
#include "store/undo/form_telling.h"
#include "store/undo/keep_for_undo.h"

namespace numalink {

namespace {

std::vector<UndoStep> undoSteps GUARDED_BY(storeLock);  // the newest last
std::vector<UndoStep> redoSteps GUARDED_BY(storeLock);
std::uint64_t redoArrivals GUARDED_BY(storeLock) = 0;  // storeState.arrivals when the redo steps were last sound
std::uint64_t lastGroup GUARDED_BY(storeLock) = 0;

// The UndoGroup that lives on this thread; number 0 is none.
struct Group {
    std::uint64_t number = 0;
    std::optional<UndoAct> act;
    std::string name;
};
thread_local Group threadGroup;

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

// Of an item by what it is at the time, so that one that was changed, renamed or moved since is told apart.
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

bool holdsId(const std::vector<StoredItem> &items, ItemId id) {
    return std::ranges::find(items, id, &StoredItem::id) != items.end();
}

std::size_t memoryOf(const UndoStep &step) {
    std::size_t bytes = 0;
    for (const UndoChange &change : step.changes) {
        bytes += sizeof change;
        if (change.before)
            bytes += change.before->name.size() + change.before->head.size() + change.before->data.size();
    }
    return bytes;
}

// Whole groups go: half of one would bring back half of what belongs together.
void dropOldest(std::vector<UndoStep> &steps) {
    std::size_t bytes = 0;
    for (const UndoStep &step : steps) bytes += memoryOf(step);
    auto end = steps.begin();
    while (bytes > undoMemoryLimit && end->group != steps.back().group) {
        const std::uint64_t group = end->group;
        for (; end->group == group; ++end) bytes -= memoryOf(*end);
    }
    steps.erase(steps.begin(), end);
}

// A change of the newest group as a whole; before lies in steps, or is null.
struct JoinedChange {
    ItemId id = noItem;
    const StoredItem *before = nullptr;
    std::optional<std::uint64_t> after;
};

// The steps of the newest group as one, the last of them first. What came and left again within it isn't in it.
std::vector<JoinedChange> newestGroup(const std::vector<UndoStep> &steps) {
    std::vector<JoinedChange> joined;
    for (auto step = steps.rbegin(); step != steps.rend() && step->group == steps.back().group; ++step) {
        for (const UndoChange &change : step->changes) {
            const auto later = std::ranges::find(joined, change.id, &JoinedChange::id);
            const StoredItem *before = change.before ? &*change.before : nullptr;
            if (later != joined.end()) later->before = before;
            if (later == joined.end()) joined.push_back({change.id, before, change.after});
        }
    }
    std::erase_if(joined, [](const JoinedChange &change) { return change.before == nullptr && !change.after; });
    return joined;
}

UndoOffer offerOf(const std::vector<UndoStep> &steps) {
    const UndoStep &newest = steps.back();
    UndoOffer offer{.act = newest.act, .name = newest.name};
    for (const JoinedChange &change : newestGroup(steps))
        if (newest.act == UndoAct::import ? change.after.has_value() : change.before != nullptr) offer.count++;
    return offer;
}

void dropNewestGroup(std::vector<UndoStep> &steps) {
    const std::uint64_t group = steps.back().group;
    while (!steps.empty() && steps.back().group == group) steps.pop_back();
}

// Takes out of changes what is no longer as it became, and fills now with what is there of the rest.
Fault readUnchanged(std::vector<JoinedChange> &changes, std::vector<StoredItem> &now) REQUIRES_LOCK(storeLock) {
    std::vector<JoinedChange> unchanged;
    for (const JoinedChange &change : changes) {
        const bool isThere = slotOfId(change.id) != noSlot;
        if (isThere != change.after.has_value()) continue;
        if (isThere) {
            StoredItem item;
            if (const Fault fault = readItem(change.id, item); fault != Fault::none) return fault;
            if (digestOf(item, item.head, item.data) != *change.after) continue;
            now.push_back(std::move(item));
        }
        unchanged.push_back(change);
    }
    changes = std::move(unchanged);
    return Fault::none;
}

// A folder that came is left where it is as long as it holds what doesn't leave with it.
void keepFilledFolders(std::vector<JoinedChange> &changes, std::vector<StoredItem> &now) REQUIRES_LOCK(storeLock) {
    const auto isFilled = [&](const JoinedChange &change) REQUIRES_LOCK(storeLock) {
        return change.before == nullptr && lowestSlot([&](const ItemHeader &head) {
                                               return head.parent == change.id && !holdsId(now, head.id);
                                           }) != noSlot;
    };
    for (auto filled = std::ranges::find_if(changes, isFilled); filled != changes.end();
         filled = std::ranges::find_if(changes, isFilled)) {
        std::erase_if(now, [&](const StoredItem &item) { return item.id == filled->id; });
        changes.erase(filled);
    }
}

bool nameTaken(const StoredItem &item, const std::vector<StoredItem> &leaving) REQUIRES_LOCK(storeLock) {
    return lowestSlot([&](const ItemHeader &head) {
               return isNamed(head, item.name, item.parent) && !holdsId(leaving, head.id);
           }) != noSlot;
}

// A folder that is there once leaving has left; for a folder to come back into, one that doesn't lie within it.
bool canHold(ItemId parent, const StoredItem &item, const std::vector<StoredItem> &leaving) REQUIRES_LOCK(storeLock) {
    if (!isFolderId(parent) || holdsId(leaving, parent)) return false;
    return !isFolderKind(item.kind) || !liesWithin(parent, item.id);
}

// Gives each item a folder that is there, and a name that is free in it. What comes back with its folder keeps its
// name, and so do items that bore one name side by side, those that have theirs now, and all that a redo brings:
// nothing has come since its undo.
void findPlaces(std::vector<StoredItem> &items, const std::vector<StoredItem> &leaving, bool isRedo)
    REQUIRES_LOCK(storeLock) {
    std::vector<ItemId> homeless;
    for (StoredItem &item : items) {
        if (holdsId(items, item.parent) || canHold(item.parent, item, leaving)) continue;
        item.parent = rootId;
        homeless.push_back(item.id);
    }
    for (StoredItem &item : items) {
        const auto othersBear = [&](std::string_view name) {
            return std::ranges::any_of(items, [&](const StoredItem &other) {
                return other.id != item.id && other.parent == item.parent && equalWithoutCase(other.name, name);
            });
        };
        const auto now = std::ranges::find(leaving, item.id, &StoredItem::id);
        const bool isThere = now != leaving.end() && now->name == item.name && now->parent == item.parent;
        if (isThere || holdsId(items, item.parent)) continue;
        const bool isHomeless = std::ranges::count(homeless, item.id) > 0;
        if (isRedo && !isHomeless) continue;
        if (!nameTaken(item, leaving) && !(isHomeless && othersBear(item.name))) continue;
        item.name = freeName(item.name, item.parent, item.kind, othersBear);
        if (item.kind == kind::program) renameProgram(item.head, item.name);
    }
}

// The step that undoes what is about to be done: now leaves or is altered, and items come.
UndoStep inverseOf(const std::vector<JoinedChange> &changes, const std::vector<StoredItem> &now,
                   const std::vector<StoredItem> &items) {
    UndoStep inverse;
    for (const JoinedChange &change : changes) {
        UndoChange &back = inverse.changes.emplace_back();
        back.id = change.id;
        const auto left = std::ranges::find(now, change.id, &StoredItem::id);
        const auto came = std::ranges::find(items, change.id, &StoredItem::id);
        if (left != now.end()) back.before = *left;
        if (came != items.end()) back.after = digestOf(*came, came->head, came->data);
    }
    return inverse;
}

// Does the newest group of from, and makes the step that undoes this for to.
Fault takeBack(std::vector<UndoStep> &from, std::vector<UndoStep> &to, TakenBack &done) REQUIRES_LOCK(storeLock) {
    std::vector<JoinedChange> changes = newestGroup(from);
    std::vector<StoredItem> now;
    if (const Fault fault = readUnchanged(changes, now); fault != Fault::none) return fault;
    keepFilledFolders(changes, now);
    if (changes.empty()) {
        dropNewestGroup(from);
        done.changedSince = true;
        return Fault::absent;
    }
    TakenBack doing{.step = offerOf(from)};
    std::vector<StoredItem> items;
    for (const JoinedChange &change : changes)
        if (change.before != nullptr) items.push_back(*change.before);
    findPlaces(items, now, &from == &redoSteps);
    std::vector<ItemId> leaving;
    leaving.reserve(now.size());
    for (const StoredItem &item : now) leaving.push_back(item.id);
    UndoStep inverse = inverseOf(changes, now, items);
    inverse.group = ++lastGroup;
    inverse.act = from.back().act;
    inverse.name = from.back().name;
    to.reserve(to.size() + 1);
    if (const Fault fault = putBack(items, leaving); fault != Fault::none) return fault;
    // What was moved rather than what it had replaced.
    const auto altered = std::ranges::find_if(items, [&](const StoredItem &item) { return holdsId(now, item.id); });
    if (!items.empty()) doing.shown = altered == items.end() ? items.front().id : altered->id;
    done = std::move(doing);
    dropNewestGroup(from);
    tellForms(inverse.changes, {}, FormCause::takenBack);
    to.push_back(std::move(inverse));
    dropOldest(to);
    redoArrivals = storeState.arrivals;
    return Fault::none;
}

bool redoIsSound() REQUIRES_LOCK(storeLock) {
    if (redoArrivals != storeState.arrivals) redoSteps.clear();
    return !redoSteps.empty();
}

}  // namespace

UndoStep newUndoStep(UndoAct act, std::string_view name) {
    undoSteps.reserve(undoSteps.size() + 1);
    UndoStep step;
    step.group = threadGroup.number;
    step.act = threadGroup.act.value_or(act);
    step.name = threadGroup.name.empty() ? name : threadGroup.name;
    return step;
}

Fault noteLeaving(std::size_t slot, UndoStep &step) {
    if (isTemporary(storeState.slots[slot].head.id)) return Fault::none;
    std::vector<bool> marks(storeState.slots.size());
    markWithContents(marks, slot);
    // From a folder to what lies in it, so that each stands behind its folder.
    std::vector<std::size_t> order{slot};
    marks[slot] = false;
    for (std::size_t next = 0; next < order.size(); next++) {
        const ItemId id = storeState.slots[order[next]].head.id;
        StoredItem item;
        if (const Fault fault = readItem(id, item); fault != Fault::none) return fault;
        step.changes.push_back({.id = id, .before = std::move(item), .after = {}});
        for (std::size_t other = 0; other < marks.size(); other++) {
            if (!marks[other] || storeState.slots[other].head.parent != id) continue;
            marks[other] = false;
            order.push_back(other);
        }
    }
    return Fault::none;
}

Fault noteBecoming(std::size_t slot, const Becoming &becoming, UndoStep &step) {
    StoredItem before;
    const ItemId id = storeState.slots[slot].head.id;
    const bool wasSeen = !isTemporary(id);
    const bool isSeen = becoming.parent ? !isTemporary(*becoming.parent) : wasSeen;
    if (!wasSeen && !isSeen) return Fault::none;
    if (const Fault fault = readItem(id, before); fault != Fault::none) return fault;
    ItemEntry entry = static_cast<const ItemEntry &>(before);
    entry.name = becoming.name.value_or(before.name);
    entry.parent = becoming.parent.value_or(before.parent);
    entry.kind = becoming.kind.value_or(before.kind);
    const ByteView head = becoming.head.value_or(before.head), data = becoming.data.value_or(before.data);
    if (!wasSeen) {
        noteArrival(entry, head, data, step);
        return Fault::none;
    }
    const std::uint64_t after = digestOf(entry, head, data);
    if (isSeen && after == digestOf(before, before.head, before.data)) return Fault::none;
    UndoChange &change = step.changes.emplace_back();
    change.id = id;
    if (isSeen) change.after = after;
    change.before = std::move(before);
    return Fault::none;
}

void noteReplacing(const ItemEntry &entry, ByteView head, ByteView data, UndoStep &step) {
    step.changes.push_back({.id = entry.id, .before = {}, .after = digestOf(entry, head, data)});
}

void noteArrival(const ItemEntry &entry, ByteView head, ByteView data, UndoStep &step) {
    if (isTemporary(entry.parent)) return;
    if (threadGroup.act == UndoAct::import)
        noteReplacing(entry, head, data, step);
    else
        step.came.push_back(entry.id);
}

void keepUndoStep(UndoStep step) {
    tellForms(step.changes, step.came, causeOf(step.act, step.changes.empty()));
    step.came = {};
    if (step.changes.empty()) return;
    if (step.group == 0) step.group = ++lastGroup;
    const auto after = std::ranges::find(undoSteps.rbegin(), undoSteps.rend(), step.group, &UndoStep::group);
    undoSteps.insert(after == undoSteps.rend() ? undoSteps.end() : after.base(), std::move(step));
    dropOldest(undoSteps);
    redoSteps.clear();
}

void forgetUndoSteps() {
    undoSteps.clear();
    redoSteps.clear();
}

UndoGroup::UndoGroup() { threadGroup = {.number = newGroup(), .act = {}, .name = {}}; }
UndoGroup::UndoGroup(UndoAct act, std::string name) {
    threadGroup = {.number = newGroup(), .act = act, .name = std::move(name)};
}
UndoGroup::~UndoGroup() { threadGroup = {}; }

std::optional<UndoOffer> storeUndoOffer() {
    std::optional<UndoOffer> offer;
    withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        if (!undoSteps.empty()) offer = offerOf(undoSteps);
        return Fault::none;
    });
    return offer;
}

bool storeCanRedo() {
    const HoldLock hold(storeLock);
    return redoIsSound();
}

bool storeUndo(TakenBack &done) {
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        return undoSteps.empty() ? Fault::absent : takeBack(undoSteps, redoSteps, done);
    }));
}

bool storeRedo(TakenBack &done) {
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) {
        return redoIsSound() ? takeBack(redoSteps, undoSteps, done) : Fault::absent;
    }));
}

}  // namespace numalink
