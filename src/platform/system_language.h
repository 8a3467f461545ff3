// Which languages the user's environment asks for. At the start, before any other thread sets variables.
#pragma once

#include <string>
#include <vector>

namespace numalink {

// Codes of two or three small letters ("de"), the most wanted first: those of LANGUAGE ahead of that of the first of
// LC_ALL, LC_MESSAGES and LANG that is set. Empty for the locales C and POSIX, in which LANGUAGE counts for nothing.
std::vector<std::string> systemLanguages();

}  // namespace numalink
