// What the program is started with: files to open, and a library in place of the user's own. Graphical thread only.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "shell/app/single_copy.h"

namespace numalink {

inline constexpr int wrongUse = 2;  // exit status

// Answers --help and --version on the standard output, and refuses a trace without a file and a start without a
// display: the exit status then, else nothing. Needs no display.
std::optional<int> answeredAtOnce(int argc, const char *const *argv);

// The first argument that is an option, though neither ours nor Qt's, which the application object has taken from them;
// empty where there is none.
std::string unknownOption(const std::vector<std::string> &arguments);

// Takes the first argument that is a library's folder or its storage.dat as the library, else the user's own; the rest
// are files. An empty folder that is given alone is a library to be begun. Who is new and gives neither is asked what
// to begin with.
StartWish chooseLibrary(const std::vector<std::string> &arguments);

}  // namespace numalink
