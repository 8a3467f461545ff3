// The user interface table, filled with Qt: boxes, status bar, questions. Graphical thread only; the entries
// themselves may be called on any thread.
#pragma once

namespace numalink {

void installUserInterface();
void removeUserInterface();

// While on, boxes of the graphical thread are answered with "cancel" unseen: the program ends at once.
void silenceBoxes(bool on);

}  // namespace numalink
