#include "store/file/check.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

namespace numalink {

namespace {

// Slots of the sound records in the order that less gives.
template <typename Key>
std::vector<std::size_t> soundSlotsBy(const std::vector<Slot> &slots, Key key) {
    std::vector<std::size_t> order;
    for (std::size_t slot = 0; slot < slots.size(); slot++)
        if (slots[slot].sound) order.push_back(slot);
    std::ranges::stable_sort(order, {}, key);
    return order;
}

// Of two records with one id the first in the table stays.
void markDoubledIds(std::vector<Slot> &slots) {
    const auto order = soundSlotsBy(slots, [&](std::size_t slot) { return slots[slot].head.id; });
    for (std::size_t i = 1; i < order.size(); i++)
        if (slots[order[i]].head.id == slots[order[i - 1]].head.id) slots[order[i]].sound = false;
}

// Of two records that overlap, the one that reaches over the other's head lies about its size. From the last on, so
// that one which lies is no witness against those ahead of it.
void markOverlaps(const MainHeader &main, std::vector<Slot> &slots) {
    std::uint64_t nextStart = UINT64_MAX;
    const auto order = soundSlotsBy(slots, [&](std::size_t slot) { return main.offsets[slot]; });
    for (auto slot = order.rbegin(); slot != order.rend(); slot++) {
        if (main.offsets[*slot] + recordSize(slots[*slot].head) > nextStart)
            slots[*slot].sound = false;
        else
            nextStart = main.offsets[*slot];
    }
}

std::uint32_t headFaults(const MainHeader &main, std::uint64_t fileSize, const std::vector<Slot> &slots) {
    std::uint64_t end = sizeof main;
    for (std::size_t slot = 0; slot < slots.size(); slot++)
        if (slots[slot].sound) end = std::max(end, main.offsets[slot] + recordSize(slots[slot].head));
    std::uint32_t faults = 0;
    if (main.itemCount > storeSlotCount) faults++;
    if (main.endOffset < end || main.endOffset > fileSize) faults++;
    if (main.nextId != safeNextId(main, slots) || main.nextId >= idLimit) faults++;
    if (main.formatNumber > storeNewestFormat) faults++;
    return faults;
}

// The temporary folder is the one of that name at the top, of several the youngest. Any other folder of its kind bears
// a wrong number, and what it holds must not go with the temporary folder's contents: an ordinary folder from here on.
// Nor does a folder ever wait in the temporary one: its parent's number is wrong, and it stands at the top from here
// on. How many those were.
std::uint32_t keepFromTemporary(std::vector<Slot> &slots) {
    std::vector<Slot *> folders;
    for (Slot &slot : slots)
        if (slot.sound && slot.head.kind == kind::temporaryFolder) folders.push_back(&slot);
    const auto isTemporary = [](const Slot *slot) {
        return slot->head.parent == rootId && nameOf(slot->head) == temporaryFolderName;
    };
    std::ranges::sort(folders, {}, [&](const Slot *slot) { return std::pair(isTemporary(slot), slot->head.id); });
    ItemId temporary = noItem;
    if (!folders.empty() && isTemporary(folders.back())) {
        temporary = folders.back()->head.id;
        folders.pop_back();
    }
    for (Slot *slot : folders) slot->head.kind = kind::folder;
    for (Slot &slot : slots) {
        if (temporary == noItem || !slot.sound || !isFolderKind(slot.head.kind) || slot.head.parent != temporary)
            continue;
        slot.head.parent = rootId;
        if (std::ranges::find(folders, &slot) == folders.end()) folders.push_back(&slot);
    }
    for (Slot *slot : folders) slot->corrected = true;
    return static_cast<std::uint32_t>(folders.size());
}

}  // namespace

bool recordIsSound(const ItemHeader &head, std::uint64_t offset, std::uint64_t fileSize) {
    return std::memcmp(head.signature, itemSignature, sizeof itemSignature) == 0 &&
           nameOf(head).size() <= storeNameLimit && offset >= sizeof(MainHeader) &&
           recordSize(head) <= fileSize - std::min(offset, fileSize) && head.id > rootId && head.id != noItem;
}

std::vector<Stretch> uncoveredStretches(const MainHeader &main, const std::vector<Slot> &slots) {
    std::vector<Stretch> stretches;
    std::uint64_t covered = sizeof main;
    std::string before;
    const auto lookAhead = [&](std::uint64_t next) {
        if (next > covered) stretches.push_back({covered, next, before});
    };
    for (const std::size_t slot : soundSlotsBy(slots, [&](std::size_t at) { return main.offsets[at]; })) {
        lookAhead(main.offsets[slot]);
        covered = main.offsets[slot] + recordSize(slots[slot].head);
        before = nameOf(slots[slot].head);
    }
    lookAhead(main.endOffset);
    return stretches;
}

std::vector<ItemId> foldersInCircle(const std::vector<Slot> &slots) {
    enum class State { unseen, onWay, done };
    struct Folder {
        ItemId parent;
        State state;
    };
    std::map<ItemId, Folder> folders;
    for (const Slot &slot : slots)
        if (slot.sound && isFolderKind(slot.head.kind)) folders[slot.head.id] = {slot.head.parent, State::unseen};
    std::vector<ItemId> circle;
    for (const auto &[start, ignored] : folders) {
        std::vector<ItemId> way;
        auto at = folders.find(start);
        for (; at != folders.end() && at->second.state == State::unseen; at = folders.find(at->second.parent)) {
            at->second.state = State::onWay;
            way.push_back(at->first);
        }
        if (at != folders.end() && at->second.state == State::onWay)
            circle.insert(circle.end(), std::ranges::find(way, at->first), way.end());
        for (const ItemId id : way) folders[id].state = State::done;
    }
    return circle;
}

std::uint32_t safeNextId(const MainHeader &main, const std::vector<Slot> &slots) {
    std::uint32_t next = std::max(main.nextId, rootId + 1);
    for (const Slot &slot : slots)
        if (slot.sound) next = std::max(next, slot.head.id + 1);
    return next;
}

std::uint32_t checkStore(const MainHeader &main, std::uint64_t fileSize, std::vector<Slot> &slots) {
    for (std::size_t slot = 0; slot < slots.size(); slot++)
        slots[slot].sound = slots[slot].sound && recordIsSound(slots[slot].head, main.offsets[slot], fileSize);
    markOverlaps(main, slots);
    markDoubledIds(slots);
    const std::uint32_t wrongNumbers = keepFromTemporary(slots);
    // A count that lies says nothing of how many slots are used: what follows the last sound one is none.
    if (main.itemCount > storeSlotCount)
        while (!slots.empty() && !slots.back().sound) slots.pop_back();
    const auto unsound = std::ranges::count(slots, false, &Slot::sound);
    return static_cast<std::uint32_t>(unsound) + wrongNumbers + headFaults(main, fileSize, slots) +
           static_cast<std::uint32_t>(foldersInCircle(slots).size());
}

}  // namespace numalink
