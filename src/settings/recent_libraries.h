// The folders of the libraries that the user has opened by hand, kept in recent-libraries.txt beside the settings: a
// folder a line, the newest first. Graphical thread only.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace numalink {

inline constexpr std::size_t recentLibraryLimit = 9;

std::vector<std::string> recentLibraries();  // empty where none were kept, or the file can't be read

// Puts a folder, absolute and with its final "/", ahead of the others. False when it can't be kept: the caller may go
// on.
bool rememberLibrary(const std::string &folder);

}  // namespace numalink
