// How a statement is known again in a text that was edited: by its tokens and those of its neighbours. Any thread.
#pragma once

#include <cstdint>
#include <vector>

#include "emulator/machine/cells.h"

namespace numalink {

// Lines count from 1, statements of a line from 0. Digests are of tokens, never 0 once the statement has been seen.
struct KnownStatement {
    int line = 0, statement = 0;
    std::uint64_t own = 0, ahead = 0, behind = 0;
    friend bool operator==(const KnownStatement &, const KnownStatement &) = default;
};

// The statements of a text as they stand in it, each with its digest and the cell at which it begins.
struct StatementOfText {
    int line = 1, statement = 0;
    int cell = 0;
    std::uint64_t digest = 0;
};
std::vector<StatementOfText> statementsOfText(const ProgramCell *cells, int count);

// Finds a statement in a text: one that hasn't been seen where its line and statement say, another the best fit, of
// equal ones the nearest. It is as it stands there from now on. The result is its index; -1, and it is left as it was,
// where nothing fits.
int findStatement(KnownStatement &known, const std::vector<StatementOfText> &text);

}  // namespace numalink
