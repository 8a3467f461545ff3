// The selection as the whole of leaving a view, selecting and opening the next one. Graphical thread only.
#pragma once

#include "calculator/item_kinds.h"

namespace numalink {

ItemKind selectedKind();  // as it was when it was selected; kind::none when nothing is

// Leaves the view, selects, tells the commands and opens the new view. False, with everything as it was, when the view
// can't be left. noItem selects nothing.
bool selectItem(ItemId id);

// Opens the selected item's view where it was left for something that kept the selection.
void showSelectedAgain();

// The tree brought up to the library, with the view and the selection of what has gone.
void refreshTreeNow();

void forgetSelection();

}  // namespace numalink
