// Expressions: a stretch of cells rewritten in place by a fixed sequence of passes until only values are left. What no
// pass knows stays where it is. Re-entrant; run thread.
#pragma once

#include "emulator/machine/cells.h"

namespace numalink {

enum class FunctionName : std::uint8_t;

// Reduces the count cells from first. count is then how many are left; they stand from first on. Nothing outside of
// the stretch is read or written. The places behind the result hold stale copies: the caller blanks them before it
// compacts a stretch around. An error shows in errorFlag alone. Begins with pace(5); a count of 0 or less does no more.
void evaluate(ProgramCell *cells, int first, int &count);

// Evaluates the cells low to high, both included, blanks what is left over up to high, and compacts the stretch of
// outerCount cells from outerFirst around them.
void evaluateSubrange(ProgramCell *cells, int outerFirst, int low, int high, int &outerCount);

// The value of the stored function f1 to f6 (digit 1 to 6), of whatever kind: evaluated anew from its text at each
// use. No such function gives 0. One that reaches itself, or of more than 500 cells, reports Syn ERROR and gives 0.
ProgramCell evaluateGraphFunction(int digit);

// The same of a graph function by its name and number, 1 to 20. One that isn't there, or is of another type, gives 0;
// another number reports Syn ERROR.
ProgramCell evaluateFunctionOfGraphs(FunctionName name, double number);

// Walk every pass and every compaction, also where there is nothing for them to act on, and make no plans of
// statements: what all faster ways are measured by. Set between runs.
extern bool evaluateWithoutShortcuts;

}  // namespace numalink
