// The one-line editor over an entry of the tree. Graphical thread only.
#pragma once

#include "calculator/item_kinds.h"

class QLineEdit;

namespace numalink {

// May open a box when a name is refused; the typed text then stays in the editor.
void openLabelEditor(ItemId id);
void closeLabelEditor();
bool labelEditorOpen();
QLineEdit *labelEditor();  // null when closed

}  // namespace numalink
