// Arithmetic on ComplexValue. Pure; any thread. Nothing here reports an error: what IEEE doubles and the library give
// is the result.
#pragma once

#include "emulator/machine/machine.h"

namespace numalink {

ComplexValue complexAdd(ComplexValue a, ComplexValue b);
ComplexValue complexSub(ComplexValue a, ComplexValue b);
ComplexValue complexMul(ComplexValue a, ComplexValue b);
ComplexValue complexSquare(ComplexValue a);
ComplexValue complexAbs(ComplexValue a);
ComplexValue complexArg(ComplexValue a);  // radians
// Magnitude and angle first, also for real operands: a residue may stay in im.
ComplexValue complexDiv(ComplexValue a, ComplexValue b);
ComplexValue complexInverse(ComplexValue a);
// Exact for a real base and exponent from 0 on; else |a|^|b| at the angle arg a * arg b.
ComplexValue complexPow(ComplexValue a, ComplexValue b);

// The value cut toward 0, its low 32 bits as a signed number; 0 for what isn't finite.
std::int32_t wrappedInteger(double value);

}  // namespace numalink
