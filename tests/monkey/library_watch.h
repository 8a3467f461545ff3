// What must hold between the monkey's actions: tree, store and file tell the same. Each fails with what differs.
#pragma once

#include <string>

namespace monkey {

void checkTree();                               // waits for a refresh that is under way; nothing while one is postponed
void checkFile(const std::string &copyFolder);  // a process of its own reads a copy of the library's file
void checkWindowsGone();                        // after the end of the program
void checkClosedLibrary();

// For the process of its own: writes the library of a folder to its file list, an item a line.
int listLibrary(const std::string &folder);

}  // namespace monkey
