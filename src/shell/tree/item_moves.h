// Moving one item. Graphical thread only.
#pragma once

#include "store/item_store.h"

namespace numalink {

// As a drop does: leaves the view, asks when the name is taken there; replacing is offered for items, never for
// folders. Kept beside the other, it gets a free name.
void moveDropped(ItemId item, ItemId folder);

}  // namespace numalink
