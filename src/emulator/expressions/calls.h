// What the calls of functions share: their dispatch, and ways to read arguments. Run thread.
#pragma once

#include <span>

#include "emulator/expressions/operators.h"

namespace numalink {

// The call whose token is the cell at open; its arguments are the count cells behind it, closing place not included.
// Leaves the result in the token's cell and blanks the arguments. A call that reports leaves the number 0; a token
// without a call reports Syn ERROR.
void evaluateFunctionCall(ProgramCell *cells, int open, int count);

ProgramCell refusedCall(void (*report)());  // reports, and gives the number 0

// Evaluates the arguments in place. How many cells are left; they stand from arguments.first on.
int evaluateArguments(const CallArguments &arguments);

// Evaluates the arguments, which must come to as many numbers with commas between. False after Syn ERROR.
bool readNumbers(const CallArguments &arguments, std::span<ComplexValue> values);

// One field of a call, as it is written.
struct CallField {
    const ProgramCell *cells = nullptr;
    int count = 0;
};
// The fields between the commas that stand in no inner bracket. How many there are; those beyond the span's size are
// counted and not kept.
int splitFields(const CallArguments &arguments, std::span<CallField> fields);

// The value of a field, evaluated on a copy. False after Syn ERROR where it isn't one number of at most 500 cells.
bool fieldValue(const CallField &field, ComplexValue &value);

// A result of two numbers: a temporary list; of none where there was no room, which is reported.
ProgramCell listOfTwo(double first, double second);

}  // namespace numalink
