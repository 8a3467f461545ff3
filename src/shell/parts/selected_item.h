// Which entry of the tree is selected: how commands name an item. Graphical thread only.
#pragma once

#include "calculator/item_kinds.h"

class QTreeWidgetItem;

namespace numalink {

ItemId idOfEntry(const QTreeWidgetItem *entry);  // noItem for null
QTreeWidgetItem *selectedEntry();                // null when nothing is selected
ItemId selectedItemId();                         // noItem when nothing is selected

}  // namespace numalink
