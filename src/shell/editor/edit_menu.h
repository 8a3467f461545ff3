// The context menu of the program on view, and what its entries do. Graphical thread only.
#pragma once

namespace numalink {

void connectEditMenu();

bool textIsSelected();
bool canCutText();
bool canPasteText();
bool canUndoTyping();
bool canRedoTyping();

void copyText();
void cutText();
void pasteText();
void deleteText();
void selectWholeText();

}  // namespace numalink
