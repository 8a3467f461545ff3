// Arithmetic on ComplexValue. Pure; any thread. Nothing here reports an error: what IEEE doubles and the library give
// is the result.
#pragma once

#include "emulator/machine/machine.h"

namespace numalink {

inline ComplexValue complexAdd(ComplexValue a, ComplexValue b) { return complexMake(a.re + b.re, a.im + b.im); }
inline ComplexValue complexSub(ComplexValue a, ComplexValue b) { return complexMake(a.re - b.re, a.im - b.im); }
inline ComplexValue complexMul(ComplexValue a, ComplexValue b) {
    return complexMake(a.re * b.re - a.im * b.im, a.im * b.re + a.re * b.im);
}
ComplexValue complexSquare(ComplexValue a);
ComplexValue complexAbs(ComplexValue a);
ComplexValue complexArg(ComplexValue a);  // radians
// Magnitude and angle first, also for real operands: a residue may stay in im.
ComplexValue complexDiv(ComplexValue a, ComplexValue b);
ComplexValue complexInverse(ComplexValue a);
// The principal value e^(b ln a); 0^0 is 1. Real where the base is real and from 0 on, or the exponent whole; a whole
// exponent up to powerByProducts multiplies also a complex base, so that i^2 is -1 and nothing else.
inline constexpr double powerByProducts = 1024;
ComplexValue complexPow(ComplexValue a, ComplexValue b);
// The index-th root of a: real also for a negative real a with an odd whole index; else a to the power 1/index. No
// number for an index of 0.
ComplexValue complexRoot(ComplexValue index, ComplexValue a);

// The relations, of the real parts alone: 1 where they hold, else 0.
inline ComplexValue truth(bool holds) { return complexReal(holds ? 1 : 0); }
inline ComplexValue complexLess(ComplexValue a, ComplexValue b) { return truth(a.re < b.re); }
inline ComplexValue complexLessOrEqual(ComplexValue a, ComplexValue b) { return truth(a.re <= b.re); }
inline ComplexValue complexEqual(ComplexValue a, ComplexValue b) { return truth(a.re == b.re); }
inline ComplexValue complexNotEqual(ComplexValue a, ComplexValue b) { return truth(a.re != b.re); }
inline ComplexValue complexGreaterOrEqual(ComplexValue a, ComplexValue b) { return truth(a.re >= b.re); }
inline ComplexValue complexGreater(ComplexValue a, ComplexValue b) { return truth(a.re > b.re); }

// The value cut toward 0, its low 32 bits as a signed number; 0 for what isn't finite.
std::int32_t wrappedInteger(double value);

}  // namespace numalink
