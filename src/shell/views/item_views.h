// What the selected item shows on the right: opening and leaving its view. Graphical thread only.
#pragma once

#include "calculator/item_kinds.h"

namespace numalink {

// Called as a view goes: what lies over it goes as well. The emulator, which stands above the views, puts in its own.
inline void (*viewLeft)() = [] {};

void connectViews();
void forgetViews();

// Opens the view of the selected item. 0 with nothing selected.
int openSelectedItem();

// Shows the selected item anew, with caret and focus where they were. False when the view can't be left.
bool reopenView();

// Gives the keyboard to the text or picture on view, if there is one. Escape there gives it back to the tree.
void focusView();

// True when the view is gone. Must be asked before anything changes the selection or the item on view. An edited
// program is stored; where that can't be, the user goes back (false) or discards the changes.
bool leaveCurrentView();
bool leaveViewAtEnd();   // the same at the end of the program, where the text may be kept as a draft
bool leaveViewAtOnce();  // without a question: what can't be stored becomes a draft

// The item on view has been deleted: its view goes without being stored.
void dropCurrentView();
// The item on view has gone while nobody looked: its view goes too, unless it holds a text that isn't stored.
void viewedItemGone();

}  // namespace numalink
