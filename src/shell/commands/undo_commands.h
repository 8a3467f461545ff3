// Undo and Redo of the Edit menu: of what was typed while the program's text has the focus, else of what was done to
// the library. Graphical thread only.
#pragma once

#include <QString>

namespace numalink {

void undoLast();  // says so when there is nothing
void redoLast();
bool undoOffered();
bool redoOffered();
QString undoWords();  // what Undo would take back, by name

}  // namespace numalink
