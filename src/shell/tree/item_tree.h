// The entries of the item tree: they show the library, and hold ids only. Graphical thread only.
#pragma once

#include <vector>

#include "calculator/item_kinds.h"

class QTreeWidgetItem;

namespace numalink {

// Brings the entries up to what the library holds, by difference: expansion, scroll and what is still there of the
// selection stay. Gives the number of strays, which stand at the root.
int showLibraryInTree();

// Selects the entry of an item, and those beside it, without a word to anyone; noItem selects nothing.
void markSelected(ItemId id, const std::vector<ItemId> &beside = {});

QTreeWidgetItem *treeEntryOf(ItemId id);  // null when not shown
void showInTree(ItemId id);               // scrolls to it, where it isn't in sight

void forgetEntries();

}  // namespace numalink
