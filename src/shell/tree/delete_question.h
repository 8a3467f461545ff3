// The questions ahead of a deletion. Graphical thread only.
#pragma once

#include "store/item_store.h"

namespace numalink {

// Whether the user wants this item deleted: the box names it, and how many items a folder holds.
bool askDelete(const ItemEntry &item);

bool askDeleteSeveral(const std::vector<ItemId> &ids);  // none of which lies in another

}  // namespace numalink
