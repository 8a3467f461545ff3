// The tokens that name a number beside the letters and the view window: what statistics, tables, graphs, recursions and
// money leave and take. Each is a plain number, 0 at the start of a run. Run thread.
#pragma once

#include "emulator/machine/cells.h"

namespace numalink {

// The number that the token names, or null. Reading, assigning and For take it like a letter.
ComplexValue *namedValueRef(Token which);

// The same for a token that has a row: where a statement leaves its results. The mode of a sample, whose token is an
// operator as well, has its number here too, and reads it where no operator can stand.
ComplexValue &namedValue(Token which);

}  // namespace numalink
