// The text of a number on the calculator's screens. Pure; any thread; whatever the locale.
#pragma once

#include <string>

#include "emulator/machine/machine.h"

namespace numalink {

// Ten significant digits in calculator codes: 0x87 is the minus, 0x89 the exponent's plus, 0xDF the exponent mark.
// Exponential below 0.1 and from 10 to the 10th on. "Inf" and "NaN" for what isn't finite.
std::string numberText(double value);

// The same as Fix and Sci want it: so many decimals, below 10 to the 10th, or so many significant digits in exponential
// form; noughts at the end stay. All else is as above.
std::string numberText(double value, const NumberFormat &format);

// The value without its fraction in base 2, 8 or 16, as many digits as 16 or 32 bits have.
std::string baseText(double value, int base);

// The value of that text: what Rnd gives.
double roundedAsShown(double value, const NumberFormat &format);

}  // namespace numalink
