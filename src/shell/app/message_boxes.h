// The user interface table, filled with Qt: boxes, status bar, questions. Graphical thread only; the entries
// themselves may be called on any thread.
#pragma once

namespace numalink {

void installUserInterface();
void removeUserInterface();

}  // namespace numalink
