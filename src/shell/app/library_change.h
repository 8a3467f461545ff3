// Another library in place of the one that is open, without an end of the program. Graphical thread only.
#pragma once

#include <string>

namespace numalink {

enum class ListLibrary { asUsual, never };  // whether both go to the list of recent libraries

// folder: absolute, with its final "/". False, with the former library open as before, when the new one can't be
// opened, a transfer runs, or the view can't be left (all told). A running copy that has it is shown instead.
bool changeLibraryTo(const std::string &folder, bool mayBegin, ListLibrary list = ListLibrary::asUsual);

}  // namespace numalink
