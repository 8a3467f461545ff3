// Files from outside, and the end of the program. Graphical thread only.
#pragma once

#include <QString>
#include <string>
#include <vector>

namespace numalink {

void openFiles();  // the Open command

void saveItems();      // into files; several that are selected are chosen for it
void shareSelected();  // the selected program as a web page
QString sharePageWords();

// paths: absolute, in the file system's own bytes, which need not be UTF-8. Imports files one after the other, each
// with its own question, and opens one that is a library in place of this one; at once, or when an open dialog has been
// closed.
void importDropped(const std::vector<std::string> &paths);
// The samples that come with the program, each file into a folder of its own, and the first of the games on view.
void importSamples();
void forgetFileCommands();

// The Tour command, put in at the start.
inline void (*beginTour)() = nullptr;

// The Exit command. What ends the program is put in at the start.
inline void (*endProgram)() = nullptr;
void exitProgram();

}  // namespace numalink
