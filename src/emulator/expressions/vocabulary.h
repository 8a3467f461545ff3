// The evaluator's vocabulary: the rows of all tokens with a meaning in an expression. Fixed; any thread.
#pragma once

#include <span>

#include "emulator/expressions/operators.h"

namespace numalink {

using OperatorGroup = std::span<const OperatorRow> (*)();
std::span<const OperatorGroup> operatorGroups();  // in the order in which their sources go through a stretch

// Begins the sequence of Ran# anew: for whoever runs a program twice and compares. Else it goes on as long as the
// process.
void randomRestart();
// Where in that sequence the machine stands, and back to such a place.
std::uint32_t randomPlace();
void randomGoOn(std::uint32_t place);

// Fills tokenFacts from the rows and from the token table as it is: machineStart does that.
void refreshOpeningTokens();

}  // namespace numalink
