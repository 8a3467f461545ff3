// What the selected item shows on the right: opening and leaving its view. Graphical thread only.
#pragma once

#include "calculator/item_kinds.h"

namespace numalink {

extern ItemKind viewKind;  // kind of the item on view, kind::none when there is none
extern ItemId viewItemId;

// Opens the view of the selected item. 0 with nothing selected.
int openSelectedItem();

// True when the view is gone. Must be asked before anything changes the selection or the item on view.
bool leaveCurrentView();

// The item on view has been deleted: its view goes without being stored.
void dropCurrentView();

// Size of an item, and a program's password, in the status bar.
void itemInfoToStatus(ItemId id);

}  // namespace numalink
