// Selecting more than one item, by mouse or keyboard. One of them is the current one, whose view is shown; what else is
// selected stays so until something is selected by itself. Graphical thread only.
#pragma once

#include <string>
#include <vector>

#include "calculator/item_kinds.h"

class QTreeWidgetItem;

namespace numalink {

void toggleAmong(ItemId id);           // as a click with Ctrl: one more, or one less; the last one stays
void extendTo(ItemId id, bool keeps);  // as one with Shift: all from where the last was selected by itself
// As the arrow keys with Ctrl: the current one moves on, and leaves those selected that were kept.
void goAmong(ItemId id);
void toggleKept();  // whether the current one stays selected when that moves on
void selectAllShown();
void selectAlone();  // the current one

// Takes the items to a folder as a drop does, with one list for all whose names are taken there.
void moveSeveral(const std::vector<ItemId> &ids, ItemId folder);
// Whether each of them may be moved to the folder, and one at least isn't there yet.
bool canMoveAll(const std::vector<ItemId> &ids, ItemId folder);

// The items themselves, and in the place of a folder all that it holds.
std::vector<ItemId> itemsWithin(const std::vector<ItemId> &ids);

std::string namesOfSeveral(const std::vector<ItemId> &ids);  // UTF-8, of the first of them at least
std::string stepNameOf(const std::vector<ItemId> &ids);      // calculator codes: "SNAKE ..."

}  // namespace numalink
