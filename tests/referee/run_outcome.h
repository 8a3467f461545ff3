// All that a run leaves behind, as lines that can be compared and shown: values to the bit, reports with their order,
// screens, the count of statements and how it ended.
#pragma once

#include <string>
#include <vector>

#include "emulator/run/scripted_run.h"

namespace numalink {

using RunOutcome = std::vector<std::string>;
RunOutcome runOutcome(const RunReport &report);

// What lasts beyond a run begins anew: memories, pictures, Ans, the sequence of Ran#. Ahead of a run to be compared.
void forgetRuns();

}  // namespace numalink
