// What each statement does: one table in the order of testing, since a prefix works only for later rows. Run thread.
#pragma once

#include "emulator/statements/run_state.h"

namespace numalink {

// Tries the rows on cell 0 of state.statement, then condition and assignment.
WayOut runStatement(RunState &state);
bool isStatementWord(const ProgramCell &cell);  // whether a row is for statements that begin with it

}  // namespace numalink
