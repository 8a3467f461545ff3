// A run without a window: its keys come from a script, and what it reports is kept. For the command line, tests and
// fuzzing. Graphical thread.
#pragma once

#include <functional>
#include <vector>

#include "emulator/machine/machine.h"
#include "emulator/machine/run_waits.h"

namespace numalink {

struct RunScript {
    std::vector<int> keys;             // one for each pass of a wait; a wait that finds none left ends the run
    std::vector<int> getKeys;          // one for each read of GetKey, then 0
    std::uint64_t statementLimit = 0;  // 0: none
    int repeat = 1;                    // so many runs, each with the same keys
};

struct RunReport {
    RunEnd ended = RunEnd::nothingToRun;
    std::uint64_t statements = 0;
    std::vector<ErrorReport> errors;
};

// Starts the machine, loads and runs to the end, so many times over; the report is that of the last run. load fills
// the ProgramTable and returns false when there is nothing to run.
RunReport runScripted(const RunScript &script, const std::function<bool()> &load);

}  // namespace numalink
