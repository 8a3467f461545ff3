// The selection as the whole of leaving a view, selecting and opening the next one. Graphical thread only.
#pragma once

#include <vector>

#include "calculator/item_kinds.h"

namespace numalink {

ItemKind selectedKind();  // as it was when it was selected; kind::none when nothing is

// Leaves the view, selects, tells the commands and opens the new view. False, with everything as it was, when the view
// can't be left. noItem selects nothing.
bool selectItem(ItemId id);

// The same for one among several: those of beside are selected as well, and the view is that of the one.
bool selectAmong(ItemId id, const std::vector<ItemId> &beside);
bool severalSelected();
// Those that stay selected when another becomes the current one by Ctrl and an arrow key.
std::vector<ItemId> &keptSelected();
// Of all that are selected, as they were then; empty when nothing is.
const std::vector<ItemKind> &selectedKinds();

void followSeveral();  // some of them may have gone, or can't be seen any more

// Opens the selected item's view where it was left for something that kept the selection.
void showSelectedAgain();

// The tree brought up to the library, with the view and the selection of what has gone.
void refreshTreeNow();

void forgetSelection();

}  // namespace numalink
