// The one-line editor over an entry of the tree. Graphical thread only.
#pragma once

#include "calculator/item_kinds.h"

class QLineEdit;

namespace numalink {

// Starts the edit of an entry's label, whatever blocks the ones that the mouse starts. May open a box when a name is
// refused; the typed text then stays in the editor.
enum class AfterEnter { tree, view };  // what has the focus once Enter has ended it
void startLabelEdit(ItemId id, AfterEnter next = AfterEnter::tree);
void closeLabelEditor();  // without a rename; the tree has the focus if the editor had it
// Ends the edit as Enter does. False when the name was refused (told) and the editor stays.
bool finishLabelEdit();
void finishLabelEditAtOnce();  // the same without a word: a refused name is given up
bool labelEditRunning();
QLineEdit *labelEditor();  // null when closed
void forgetLabelEdit();

}  // namespace numalink
