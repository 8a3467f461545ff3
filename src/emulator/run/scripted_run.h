// A run without a window: its keys come from a script, and what it reports is kept. For the command line, tests and
// fuzzing. Graphical thread.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "emulator/machine/key_runs.h"
#include "emulator/machine/machine.h"
#include "emulator/machine/run_waits.h"
#include "emulator/run/run_beginning.h"

namespace numalink {

struct RunScript {
    KeyRuns keys;                             // one for each pass of a wait; a wait that finds none left ends the run
    KeyRuns getKeys;                          // one for each read of GetKey, then 0
    std::uint64_t statementLimit = 0;         // 0: none
    std::optional<RunBeginning> begins = {};  // what the machine begins with; else as the run before has left it
    int repeat = 1;                           // so many runs, each with the same keys
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
