// Which entry of the tree is selected: how commands name an item. Graphical thread only.
#pragma once

#include <vector>

#include "calculator/item_kinds.h"

class QTreeWidgetItem;

namespace numalink {

ItemId idOfEntry(const QTreeWidgetItem *entry);  // noItem for null
QTreeWidgetItem *selectedEntry();                // null when nothing is selected
ItemId selectedItemId();                         // noItem when nothing is selected

// All that are selected, in the order of the tree, the one above among them. An entry that can't be seen, in a folder
// that is shut or left out by the filter, doesn't count.
std::vector<ItemId> selectedItemIds();
// The same without what lies in a folder that is selected as well.
std::vector<ItemId> selectedOutermost();

}  // namespace numalink
