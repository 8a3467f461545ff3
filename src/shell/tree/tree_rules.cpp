#include "shell/tree/tree_rules.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "calculator/charset.h"
#include "calculator/frames.h"
#include "calculator/program_info.h"
#include "platform/letter_case.h"

namespace numalink {

namespace {

using ChildrenOf = std::unordered_map<ItemId, std::vector<const ItemEntry *>>;

ChildrenOf childrenByParent(const std::vector<ItemEntry> &items) {
    ChildrenOf children;
    for (const ItemEntry &item : items) children[item.parent].push_back(&item);
    return children;
}

void sortForTree(std::vector<const ItemEntry *> &entries, const TreeRanks &ranks) {
    struct Keyed {
        std::uint64_t rank;
        std::string name;
        const ItemEntry *entry;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(entries.size());
    for (const ItemEntry *entry : entries) {
        const auto rank = ranks.find(entry->id);
        keyed.push_back({rank == ranks.end() ? 0 : rank->second, foldCase(entry->name), entry});
    }
    std::ranges::sort(keyed, [](const Keyed &a, const Keyed &b) {
        return std::tie(a.rank, a.name, a.entry->id) < std::tie(b.rank, b.name, b.entry->id);
    });
    for (std::size_t i = 0; i < entries.size(); i++) entries[i] = keyed[i].entry;
}

// Marks an item and all that lies below it.
void markReached(const ItemEntry &first, const ChildrenOf &children, std::unordered_set<ItemId> &reached) {
    std::vector<const ItemEntry *> waiting = {&first};
    while (!waiting.empty()) {
        const ItemEntry *item = waiting.back();
        waiting.pop_back();
        if (!reached.insert(item->id).second || !isFolderKind(item->kind)) continue;
        const auto below = children.find(item->id);
        if (below != children.end()) waiting.insert(waiting.end(), below->second.begin(), below->second.end());
    }
}

// Up from an item that only a circle of folders holds: that circle's folder of lowest id.
ItemId circleAbove(ItemId from, const std::unordered_map<ItemId, const ItemEntry *> &itemOf) {
    std::unordered_set<ItemId> passed;
    while (passed.insert(from).second) from = itemOf.at(from)->parent;
    ItemId lowest = from;
    for (ItemId id = itemOf.at(from)->parent; id != from; id = itemOf.at(id)->parent) lowest = std::min(lowest, id);
    return lowest;
}

// What the root doesn't reach: the items whose parent is no folder here, and of each circle one folder.
std::vector<const ItemEntry *> findStrays(const std::vector<ItemEntry> &items, const ChildrenOf &children) {
    std::unordered_map<ItemId, const ItemEntry *> itemOf;
    for (const ItemEntry &item : items) itemOf[item.id] = &item;
    std::unordered_set<ItemId> reached;
    std::vector<const ItemEntry *> strays;
    for (const ItemEntry &item : items) {
        const auto parent = itemOf.find(item.parent);
        const bool atRoot = item.parent == rootId;
        if (!atRoot && parent != itemOf.end() && isFolderKind(parent->second->kind)) continue;
        if (!atRoot && item.kind != kind::temporaryFolder) strays.push_back(&item);
        markReached(item, children, reached);
    }
    for (const ItemEntry &item : items) {
        if (reached.contains(item.id)) continue;
        strays.push_back(itemOf.at(circleAbove(item.id, itemOf)));
        markReached(*strays.back(), children, reached);
    }
    return strays;
}

// Appends what is to stand at the root and all that is reached from it, without recursion: folders may be nested 2000
// deep. A circle ends where it began.
void appendReached(std::vector<const ItemEntry *> start, ChildrenOf &children, const TreeRanks &ranks,
                   TreeContent &content) {
    struct Step {
        const ItemEntry *item;
        ItemId shownUnder;
    };
    std::unordered_set<ItemId> atRoot;
    for (const ItemEntry *entry : start) atRoot.insert(entry->id);
    std::vector<Step> waiting;
    const auto push = [&](std::vector<const ItemEntry *> entries, ItemId shownUnder) {
        sortForTree(entries, ranks);
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
            if (shownUnder == rootId || !atRoot.contains((*entry)->id)) waiting.push_back({*entry, shownUnder});
    };
    push(std::move(start), rootId);
    while (!waiting.empty()) {
        const auto [item, shownUnder] = waiting.back();
        waiting.pop_back();
        if (item->kind == kind::temporaryFolder) continue;
        const bool opened = (item->flags & folderOpenFlag) != 0;
        content.entries.push_back({item->id, shownUnder, item->kind, item->name, opened});
        if (isFolderKind(item->kind)) push(children[item->id], item->id);
    }
}

bool nameIsTaken(const ItemEntry &item, const std::string &name) {
    const std::vector<ItemEntry> siblings = storeListChildren(item.parent);
    return std::ranges::any_of(siblings, [&](const ItemEntry &sibling) {
        return sibling.id != item.id && equalWithoutCase(sibling.name, name);
    });
}

// Eight bytes of a head frame's name, filled up with 0xFF.
void writeFrameName(Bytes &head, const std::string &name) {
    for (std::size_t i = 0; i < frameNameSize; i++)
        head[frameNameOffset + i] = i < name.size() ? static_cast<std::uint8_t>(name[i]) : 0xFF;
}

}  // namespace

TreeContent treeContent(const std::vector<ItemEntry> &items, const TreeRanks &ranks) {
    ChildrenOf children = childrenByParent(items);
    const std::vector<const ItemEntry *> strays = findStrays(items, children);
    std::vector<const ItemEntry *> start = children[rootId];
    start.insert(start.end(), strays.begin(), strays.end());
    TreeContent content;
    content.strays = static_cast<int>(strays.size());
    appendReached(std::move(start), children, ranks, content);
    return content;
}

std::vector<bool> longestRising(const std::vector<int> &places) {
    constexpr std::size_t none = SIZE_MAX;
    std::vector<std::size_t> ends;  // for each length of a rising row the index of its lowest end
    std::vector<std::size_t> before(places.size(), none);
    for (std::size_t i = 0; i < places.size(); i++) {
        const auto end =
            std::ranges::lower_bound(ends, places[i], {}, [&](std::size_t index) { return places[index]; });
        if (end != ends.begin()) before[i] = *(end - 1);
        if (end == ends.end()) {
            ends.push_back(i);
        } else {
            *end = i;
        }
    }
    std::vector<bool> rising(places.size());
    for (std::size_t i = ends.empty() ? none : ends.back(); i != none; i = before[i]) rising[i] = true;
    return rising;
}

bool canDrop(ItemKind dragged, ItemKind folderKind) {
    if (isFolderKind(dragged)) return false;
    const ItemKind standard = standardFolderOfKind(dragged);
    return folderKind == kind::folder || (standard != kind::none && folderKind == standard);
}

std::optional<Text> nameFault(const ItemEntry &item, const std::string &utf8Name) {
    int missing = 0;
    const std::string name = calculatorFromUtf8(utf8Name, &missing);
    if (name.find_first_not_of(' ') == std::string::npos) return Text::nameEmpty;
    if (missing > 0) return Text::nameHasForeignCharacter;
    if (isFolderKind(item.kind) && name.find('/') != std::string::npos) return Text::nameHasSlash;
    if (item.kind == kind::program && name.size() > programNameLimit) return Text::programNameTooLong;
    if (name.size() > storeNameLimit) return Text::nameTooLong;
    if (nameIsTaken(item, name)) return Text::nameTaken;
    return std::nullopt;
}

bool renameItem(const ItemEntry &item, const std::string &calculatorName) {
    StoredItem stored;
    if (!isTextKind(item.kind) && item.kind != kind::algebraBlock) return storeRename(item.id, calculatorName);
    if (!storeReadItem(item.id, stored)) return false;
    if (isTextKind(item.kind)) {
        std::optional<ProgramInfo> info = decodeProgramInfo(stored.head);
        if (!info || stored.head.size() != programInfoSize) return storeRename(item.id, calculatorName);
        info->name = calculatorName.substr(0, programNameLimit);
        return storeRename(item.id, calculatorName, encodeProgramInfo(*info));
    }
    if (stored.head.size() < shortHeadFrameSize) return storeRename(item.id, calculatorName);
    writeFrameName(stored.head, calculatorName);
    frameChecksum(std::span(stored.head).first(shortHeadFrameSize));
    return storeRename(item.id, calculatorName, stored.head);
}

int countBelow(const std::vector<ItemEntry> &items, ItemId folder) {
    const ChildrenOf children = childrenByParent(items);
    std::vector<ItemId> waiting = {folder};
    std::unordered_set<ItemId> seen = {folder};
    int count = 0;
    while (!waiting.empty()) {
        const auto found = children.find(waiting.back());
        waiting.pop_back();
        if (found == children.end()) continue;
        for (const ItemEntry *child : found->second) {
            if (!seen.insert(child->id).second) continue;
            count++;
            waiting.push_back(child->id);
        }
    }
    return count;
}

}  // namespace numalink
