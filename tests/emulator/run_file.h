// A program as a test: what tests/runs/*.run hold, and how what happened is held against it.
#pragma once

#include <string>

namespace numalink {

// Runs the program of the file in a machine as a fresh process has it. Empty when all was as expected, else what
// differs, with pictures of the screens.
std::string checkRunFile(const std::string &path);

}  // namespace numalink
