// The item tree on screen: it shows the library, and its selection is how commands name an item. It holds ids only.
// Graphical thread only, but for refreshTree.
#pragma once

#include <QString>
#include <string>

#include "calculator/item_kinds.h"

class QTreeWidgetItem;

namespace numalink {

// "SNAKE, Program", of a name in calculator codes: what a screen reader says of an item.
QString spokenName(const std::string &name, ItemKind itemKind);

ItemId selectedItemId();  // noItem when nothing is selected
ItemKind selectedKind();  // as it was when it was selected; kind::none when nothing is

// Leaves the view, selects, tells the commands and opens the new view. False, with everything as it was, when the
// view can't be left. noItem selects nothing.
bool selectItem(ItemId id);
// Opens the selected item's view where it was left for something that kept the selection.
void showSelectedAgain();

// Brings the tree up to what the library holds, by difference: selection, open view, expansion and scroll stay. Any
// thread. Postponed while a label edit, a drag, a menu or a box is open.
void refreshTree();
void refreshTreeWhenFree();  // at once when one of these has ended; else it comes within postponedMilliseconds
inline constexpr int postponedMilliseconds = 100;

// Starts the edit of an entry's label, whatever blocks the ones that the mouse starts.
enum class AfterEnter { tree, view };  // what has the focus once Enter has ended it
void startLabelEdit(ItemId id, AfterEnter next = AfterEnter::tree);
bool labelEditRunning();

// Moves an item as a drop does: leaves the view, asks when the name is taken there.
void moveDropped(ItemId item, ItemId folder);

void connectTree();
void forgetTree();

QTreeWidgetItem *treeEntryOf(ItemId id);  // null when not shown
QTreeWidgetItem *selectedEntry();         // null when nothing is selected

}  // namespace numalink
