// The functions that take or make an array: Dim, Identity, Sum, Augment(, List to Mat(, Seq(. For the evaluator alone.
#pragma once

#include "emulator/machine/cells.h"

namespace numalink {

// The call whose token is the cell at open; its arguments are the count cells behind it, closing place not included.
// Leaves the result in the token's cell and blanks the arguments. A call that reports leaves the number 0.
void evaluateFunctionCall(ProgramCell *cells, int open, int count);

// The prefix at p with its operand at p + 1; the operand is blanked unless Sum finds no list.
void evaluateDim(ProgramCell *cells, int p);
void evaluateIdentity(ProgramCell *cells, int p);
void evaluateSum(ProgramCell *cells, int p);

}  // namespace numalink
