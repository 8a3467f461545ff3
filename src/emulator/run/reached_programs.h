// Which of the loaded programs a run can come to. Any thread between runs; the run thread.
#pragma once

#include <vector>

namespace numalink {

// The program that is started, and behind it all that it calls, however deep; empty without a program.
std::vector<int> programsReached();

}  // namespace numalink
