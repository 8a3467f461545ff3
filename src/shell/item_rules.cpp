#include "shell/item_rules.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "calculator/charset.h"
#include "calculator/frames.h"
#include "calculator/program_info.h"

namespace numalink {

namespace {

using ChildrenOf = std::unordered_map<ItemId, std::vector<const ItemEntry *>>;

ChildrenOf childrenByParent(const std::vector<ItemEntry> &items) {
    ChildrenOf children;
    for (const ItemEntry &item : items) children[item.parent].push_back(&item);
    return children;
}

void sortForTree(std::vector<const ItemEntry *> &entries) {
    std::vector<std::pair<std::string, const ItemEntry *>> keyed;
    keyed.reserve(entries.size());
    for (const ItemEntry *entry : entries) keyed.emplace_back(foldCase(entry->name), entry);
    std::ranges::sort(keyed, [](const auto &a, const auto &b) {
        return a.first != b.first ? a.first < b.first : a.second->id < b.second->id;
    });
    for (std::size_t i = 0; i < entries.size(); i++) entries[i] = keyed[i].second;
}

// Appends start and all that is reached from it, without recursion: folders may be nested 2000 deep.
void appendReached(std::vector<const ItemEntry *> start, ItemId root, ChildrenOf &children,
                   std::unordered_set<ItemId> &seen, TreeContent &content) {
    struct Step {
        const ItemEntry *item;
        ItemId shownUnder;
    };
    std::vector<Step> waiting;
    const auto push = [&](std::vector<const ItemEntry *> entries, ItemId shownUnder) {
        sortForTree(entries);
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) waiting.push_back({*entry, shownUnder});
    };
    push(std::move(start), root);
    while (!waiting.empty()) {
        const Step step = waiting.back();
        waiting.pop_back();
        if (!seen.insert(step.item->id).second) continue;
        if (step.item->kind != kind::temporaryFolder) {
            content.entries.push_back({step.item->id, step.shownUnder, step.item->kind, step.item->name,
                                       (step.item->flags & folderOpenFlag) != 0});
        }
        if (!isFolderKind(step.item->kind)) continue;
        if (step.item->kind == kind::temporaryFolder) {
            std::vector<const ItemEntry *> hidden = children[step.item->id];
            for (std::size_t i = 0; i < hidden.size(); i++) {
                if (!seen.insert(hidden[i]->id).second) continue;
                const auto &below = children[hidden[i]->id];
                hidden.insert(hidden.end(), below.begin(), below.end());
            }
            continue;
        }
        push(children[step.item->id], step.item->id);
    }
}

struct DropRow {
    ItemKind itemKind;
    ItemKind folderKind;
};

constexpr DropRow dropRows[] = {
    {kind::program, 1001},       {kind::backup, 1003},           {kind::unknown, 1004},
    {kind::graphFunction, 1004}, {kind::matrix, 1005},           {kind::list, 1006},
    {kind::picture, 1007},       {kind::graphMemory, 1008},      {kind::functionMemory, 1009},
    {kind::colourScreen, 1010},  {kind::monochromeScreen, 1010}, {kind::algebraBlock, 1011},
};

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

TreeContent treeContent(const std::vector<ItemEntry> &items) {
    ChildrenOf children = childrenByParent(items);
    std::unordered_set<ItemId> seen;
    TreeContent content;
    appendReached(children[rootId], rootId, children, seen, content);
    // What the root doesn't reach: first the items whose parent is no folder here, then what is left, circles.
    std::unordered_set<ItemId> folders;
    for (const ItemEntry &item : items)
        if (isFolderKind(item.kind)) folders.insert(item.id);
    for (const bool circles : {false, true}) {
        for (const ItemEntry &item : items) {
            if (seen.contains(item.id) || (!circles && folders.contains(item.parent))) continue;
            content.strays++;
            appendReached({&item}, rootId, children, seen, content);
        }
    }
    return content;
}

bool canDrop(ItemKind dragged, ItemKind folderKind) {
    if (isFolderKind(dragged)) return false;
    if (folderKind == kind::folder) return true;
    return std::ranges::any_of(
        dropRows, [&](const DropRow &row) { return row.itemKind == dragged && row.folderKind == folderKind; });
}

std::optional<NameFault> nameFault(const ItemEntry &item, const std::string &utf8Name) {
    int missing = 0;
    const std::string name = calculatorFromUtf8(utf8Name, &missing);
    if (name.find_first_not_of(' ') == std::string::npos) return NameFault{0, OwnText::nameEmpty};
    if (missing > 0) return NameFault{0, OwnText::nameHasForeignCharacter};
    if (isFolderKind(item.kind) && name.find('/') != std::string::npos) return NameFault{0, OwnText::nameHasSlash};
    if (item.kind == kind::program && name.size() > programNameLimit) return NameFault{26, {}};
    if (name.size() > storeNameLimit) return NameFault{0, OwnText::nameTooLong};
    if (nameIsTaken(item, name)) return NameFault{0, OwnText::nameTaken};
    return std::nullopt;
}

bool renameItem(const ItemEntry &item, const std::string &calculatorName) {
    if (!storeRename(item.id, calculatorName)) return false;
    StoredItem stored;
    if (isTextKind(item.kind)) {
        if (!storeReadItem(item.id, stored)) return false;
        std::optional<ProgramInfo> info = decodeProgramInfo(stored.head);
        if (!info) return true;
        info->name = calculatorName.substr(0, programNameLimit);
        return storeRewriteHead(item.id, encodeProgramInfo(*info));
    }
    if (item.kind == kind::algebraBlock) {
        if (!storeReadItem(item.id, stored)) return false;
        if (stored.head.size() < shortHeadFrameSize) return true;
        writeFrameName(stored.head, calculatorName);
        frameChecksum(std::span(stored.head).first(shortHeadFrameSize));
        return storeRewriteHead(item.id, stored.head);
    }
    return true;
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
