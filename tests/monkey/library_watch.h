// What must hold between the monkey's actions: the tree shows the library, and its file is sound. Each fails with what
// differs.
#pragma once

#include <string>

namespace monkey {

void checkTree();                               // waits for a refresh that is under way; nothing while one is postponed
void checkFile(const std::string &copyFolder);  // numalink-cli reads a copy of the library's file
void checkWindowsGone();                        // after the end of the program
void checkClosedLibrary();

}  // namespace monkey
