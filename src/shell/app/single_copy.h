// One copy of the program a library: a further start raises the window of the first, hands it the files that it was
// given, and ends. Graphical thread only.
#pragma once

#include <string>
#include <vector>

namespace numalink {

struct StartWish {
    bool ofThisLibrary = false;           // this library was asked for; else it is the user's own, and any window does
    std::vector<std::string> files = {};  // absolute paths, to be opened as dropped ones are
    bool asksWhenNew = false;  // where there is neither a library nor settings, the user is asked what to begin with
    std::string trace = {};    // the file for a trace of the wire, or empty
};

// Asks a running copy of the same user to show its window and take the files: the one with this library, or one that
// began with it and has another open now, if any window does. True when one has answered; one that holds the library
// and doesn't answer is met when the library is opened.
bool raiseRunningCopy(const StartWish &wish);

// From now on, answers such a question with raiseMainWindow. Asked again after a change of the library.
void answerFurtherCopies();
void stopAnsweringCopies();  // for a change of the library
void forgetCopies();         // at the end

}  // namespace numalink
