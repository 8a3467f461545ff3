// What the tree is ordered by, until the program ends. Graphical thread only.
#pragma once

#include "shell/tree/tree_rules.h"

namespace numalink {

enum class TreeOrder { name, kind, size, time };

TreeOrder treeOrder();
void setTreeOrder(TreeOrder order);  // and brings the tree up to it
void forgetTreeOrder();

// Folders first where names don't rule; then by kind, the largest, or what has changed last.
TreeRanks treeRanks(const std::vector<ItemEntry> &items);

}  // namespace numalink
