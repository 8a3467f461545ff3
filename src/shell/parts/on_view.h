// Which item is on view on the right, for all who ask; item_views keeps it. Graphical thread only.
#pragma once

#include "calculator/item_kinds.h"

namespace numalink {

extern ItemKind viewKind;  // kind of the item on view, kind::none when there is none
extern ItemId viewItemId;

// For who follows programs on view: one has been opened, its text edited, or stored as it is now.
inline void (*programOpened)() = [] {};
inline void (*programEdited)() = [] {};
inline void (*programStored)(ItemId id) = [](ItemId) {};

}  // namespace numalink
