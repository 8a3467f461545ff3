// The programs in progress as they stand between two statements: what it takes, beside the machine, to carry a run on
// from there. Run thread, or any while the observer blocks.
#pragma once

#include <vector>

#include "emulator/statements/run_state.h"

namespace numalink {

// Of the innermost program position is the statement to come; of the others their Prog.
struct CallPlace {
    int program = 0;  // index of the ProgramTable
    int position = 0;
    int statementLength = 0;
    bool forContinuing = false;
    ProgramCell left;  // what cell 0 holds: the end of a program may show it
};

int runCallDepth();  // 1: the first program alone; 0 while no run is on

// The first program ahead, the innermost last; empty while no run is on.
std::vector<CallPlace> runCalls();

// Within goesOnElsewhere: the run carries on from there. False without the memory for it.
bool runCarryOnFrom(const std::vector<CallPlace> &places);

}  // namespace numalink
