// Undo and Redo of the Edit menu: of what was typed while the program's text has the focus, else of what was deleted or
// replaced in the library. Graphical thread only.
#pragma once

namespace numalink {

void buildUndoMenu();

}  // namespace numalink
