// A run: its threads, the statement loop, the waits, the end. Started and stopped on the graphical thread; what runs,
// runs on run threads, of which one is active.
#pragma once

#include <cstdint>

#include "calculator/item_kinds.h"
#include "emulator/machine/run_waits.h"

namespace numalink {

struct RunOptions {
    std::uint64_t statementLimit = 0;  // the run ends after so many; 0: no limit
    bool limitsWork = true;            // with such a limit: evaluations within calls have one too
};

// Starts the first run thread on program 0. machineStart and the loading come before; emulatorRunning is set here.
// False, with nothing started, when there is no program or a run is on.
bool runStart(const RunOptions &options = {});
// Clears emulatorRunning, wakes the run threads, refuses their calls to the user interface, and joins them. Harmless
// when none runs. Not from within a call that serves a run thread: a box of the run has to be closed first.
void runStop();
// Blocks until the run has ended by itself (the command line, tests), and then stops; serves nothing.
void runWait();
RunEnd runEnded();  // where the last run was when it ended by itself; running after a stop

// Where the last run halted on an error, for as long as it hasn't begun again. Graphical thread, with no run on.
struct RunFault {
    ItemId item = noItem;
    int line = 0;       // of the program, from 1; 0: there was no halt
    int statement = 0;  // of the line, from 0, as colons part them
};
const RunFault &runFault();

// The rows of the MatrixTable that variables and temporaries own, as the last statement left them. Counted while the
// setting DisplayDebug is on. Any thread.
struct DebugCounts {
    int ofVariables = 0;
    int temporary = 0;
};
DebugCounts runDebugCounts();

}  // namespace numalink
