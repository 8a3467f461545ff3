// What the program is started with: files to open, and a library in place of the user's own. Graphical thread only.
#pragma once

#include <optional>
#include <string>

#include "shell/app/single_copy.h"

namespace numalink {

// Answers --help and --version on the standard output: the exit status then, else nothing. Needs no display.
std::optional<int> answeredAtOnce(int argc, const char *const *argv);

// Takes the first argument that is a folder or a library's storage.dat as the library, else the user's own; the rest
// are files. Who is new and gives neither is asked what to begin with.
StartWish chooseLibrary(const QStringList &arguments);

}  // namespace numalink
