// The one-line editor over an entry of the tree. Graphical thread only.
#pragma once

#include "shell/tree/item_tree.h"

class QLineEdit;

namespace numalink {

// May open a box when a name is refused; the typed text then stays in the editor.
void openLabelEditor(ItemId id, AfterEnter next);
void closeLabelEditor();  // without a rename; the tree has the focus if the editor had it
// Ends the edit as Enter does. False when the name was refused (told) and the editor stays.
bool finishLabelEdit();
void finishLabelEditAtOnce();  // the same without a word: a refused name is given up
bool labelEditorOpen();
QLineEdit *labelEditor();  // null when closed

}  // namespace numalink
