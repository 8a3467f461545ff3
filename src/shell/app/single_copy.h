// One copy of the program a library: a second start raises the window of the first, and ends with the boxes of a
// library that is held. Graphical thread only.
#pragma once

namespace numalink {

// Asks a running copy with this library to show its window. True when one has answered.
bool raiseRunningCopy();

// From now on, answers such a question with raiseMainWindow.
void answerFurtherCopies();
void stopAnsweringCopies();

}  // namespace numalink
