// What each statement does: one table in the order of testing, since a prefix works only for later rows. Run thread.
#pragma once

#include <span>

#include "emulator/cells.h"
#include "emulator/run_state.h"

namespace numalink {

struct StatementRow {
    Token token;       // the first, where last is given
    Token last;        // the last of a run of tokens, or the same
    CellKind kind;     // string: the row of a string; else token
    const char *name;  // for traces and tests
    WayOut (*run)(RunState &state);
};

std::span<const StatementRow> statementRows();

// Tries the rows on cell 0 of state.statement, then condition and assignment.
WayOut runStatement(RunState &state);

}  // namespace numalink
