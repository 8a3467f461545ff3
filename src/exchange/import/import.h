// Item files into the library: the kind of file is told by its first bytes, its items go to the temporary folder,
// and a question says where from there. Graphical thread only.
#pragma once

#include <string>

#include "telling/user_interface.h"

namespace numalink {

inline constexpr std::uint64_t importFileLimit = 64u << 20;  // bytes of a file that is read at all
inline constexpr std::size_t importFolderNameLimit = 300;

extern std::string importFolderName;  // UTF-8; written at the start of each import, edited by the question

// Imports the file at path; baseName (UTF-8) stands for it as folder name. All outcome is told to the user. What an
// earlier import has parked goes, unless it waits for its transmission. What comes into the library is taken back in
// one step.
void importFile(const std::string &path, const std::string &baseName);

// A file's name without folder and last ending.
std::string importBaseName(const std::string &path);

}  // namespace numalink
