// What the tree is ordered by, a setting. Graphical thread only.
#pragma once

#include "shell/tree/tree_rules.h"

namespace numalink {

enum class TreeOrder { name, kind, size, time };

TreeOrder treeOrder();
// And brings the tree up to it. Tells how many items have no known time where that is the order: they stand last.
void setTreeOrder(TreeOrder order);

// Folders first where names don't rule; then by kind, the largest, or what has changed last.
TreeRanks treeRanks(const std::vector<ItemEntry> &items);

}  // namespace numalink
