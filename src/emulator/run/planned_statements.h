// The short way through statements that have a plan. Run thread.
#pragma once

#include "emulator/machine/run_observer.h"
#include "emulator/statements/run_state.h"

namespace numalink {

enum class PlannedStop {
    plainStatement,  // the statement at state.position is to be run by its row
    statementEnd,    // a statement has been run, up to its end: errors and screen are to be looked at
    stopped,         // the observer has left the run, or it has ended
    programCall      // Prog: the called one is to be run, and then the end of the statement to be looked at
};

struct PlannedRun {
    std::uint64_t statementLimit = 0;  // of machine.statementsRun, 0 for none
    bool refreshDue = false;           // the screen may differ from the display
    const RunObserver *observer = nullptr;
    int called = -1;  // of a programCall
};

// Runs statements from state.position on as long as they have plans and nothing else asks for a look: at the latest
// every 4,096 statements. state.position and state.statementLength are then as for the statement loop.
PlannedStop runPlanned(RunState &state, PlannedRun &run);

}  // namespace numalink
