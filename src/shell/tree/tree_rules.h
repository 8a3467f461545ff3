// The rules of the item tree without the tree: what stands where, what may be dropped where, which names may be given.
// No Qt. Graphical thread.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "store/item_store.h"
#include "telling/texts.h"

namespace numalink {

// One entry of the tree as it is to be shown, parents ahead of their children.
struct TreeEntry {
    ItemId id = noItem;
    ItemId shownUnder = rootId;  // the entry above it; the root for strays
    ItemKind kind = kind::unknown;
    std::string name;  // calculator codes
    bool opened = false;
};

struct TreeContent {
    std::vector<TreeEntry> entries;
    int strays = 0;  // items whose parent is missing, no folder, or reached only in a circle; shown at the root
};

// What the items of a folder are ordered by, ahead of their names: the lower rank first, 0 for who has none.
using TreeRanks = std::unordered_map<ItemId, std::uint64_t>;

// All of items (by rising id) in the order of the tree: by rank, by name with A to Z folded, then by id, folders and
// items mixed. The temporary folder and what it holds are left out.
TreeContent treeContent(const std::vector<ItemEntry> &items, const TreeRanks &ranks = {});

// Which of these places, all different, may stay when they are to rise: a longest rising row of them.
std::vector<bool> longestRising(const std::vector<int> &places);

// Whether an item may be moved into that folder: never a folder; any ordinary folder takes every item, a standard
// folder its own kinds.
bool canDrop(ItemKind dragged, ItemKind folderKind);

// The text that tells what is wrong with a name for an item, or nothing.
std::optional<Text> nameFault(const ItemEntry &item, const std::string &utf8Name);

// Renames an item and writes the name into its head where the head carries one. The name has passed nameFault.
bool renameItem(const ItemEntry &item, const std::string &calculatorName);

// How many items lie below a folder, at any depth.
int countBelow(const std::vector<ItemEntry> &items, ItemId folder);

}  // namespace numalink
