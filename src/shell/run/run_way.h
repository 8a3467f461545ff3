// A run that repeats unseen the way to a moment, or back: how far it has come, in the status bar and for the line above
// the panes, once it takes longer than a moment. Escape ends it. Graphical thread only.
#pragma once

#include <QString>

namespace numalink {

void watchWay();     // behind what may begin one
QString wayWords();  // empty: none is on, or only just
// Back to where the way back began. False when the run is on none, and hasn't just come to the end of one: the key
// would then end the run.
bool giveUpWay();
void forgetWay();

// After each change of the words.
inline void (*wayMoved)() = [] {};

}  // namespace numalink
