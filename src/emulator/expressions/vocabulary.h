// The evaluator's vocabulary: the rows of all tokens with a meaning in an expression. Fixed; any thread.
#pragma once

#include <span>

#include "emulator/expressions/operators.h"

namespace numalink {

std::span<const OperatorRow> operatorRows();  // in the order of the steps, then of the tokens

// Begins the sequence of Ran# anew: for whoever runs a program twice and compares. Else it goes on as long as the
// process.
void randomRestart();

// Fills tokenFacts from the rows and from the token table as it is: machineStart does that.
void refreshOpeningTokens();

}  // namespace numalink
