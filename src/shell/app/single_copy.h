// One copy of the program a library: a second start raises the window of the first and ends. Graphical thread only.
#pragma once

namespace numalink {

// Asks a running copy with this library to show its window. True when one has answered; one that holds the library
// and doesn't answer is met when the library is opened.
bool raiseRunningCopy();

// From now on, answers such a question with raiseMainWindow.
void answerFurtherCopies();
void stopAnsweringCopies();

}  // namespace numalink
