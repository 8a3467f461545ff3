// Moving an item, and the questions ahead of a deletion and of a move onto a taken name. Graphical thread only.
#pragma once

#include "store/item_store.h"

namespace numalink {

// Whether the user wants this item deleted: the box names it, and how many items a folder holds.
bool askDelete(const ItemEntry &item);

bool askDeleteSeveral(const std::vector<ItemId> &ids);  // none of which lies in another

enum class TakenAnswer { cancel, keepBoth, replace };
// Another item of the name stands in the folder. Replacing is offered only where that one is of the same kind.
TakenAnswer askNameTaken(const ItemEntry &moved, bool mayReplace);

// Moves an item as a drop does: leaves the view, asks when the name is taken there. Kept beside the other, it gets a
// free name.
void moveDropped(ItemId item, ItemId folder);

}  // namespace numalink
