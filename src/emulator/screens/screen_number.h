// The text of a number on the calculator's screens. Pure; any thread; whatever the locale.
#pragma once

#include <string>

#include "emulator/machine/machine.h"

namespace numalink {

// Ten significant digits in calculator codes: 0x87 is the minus, 0x89 the exponent's plus, 0xDF the exponent mark.
// Exponential below 0.1 and from 10 to the 10th on. "Inf" and "NaN" for what isn't finite.
std::string numberText(double value);

// The same as Fix and Sci want it: so many decimals, below 10 to the 10th, or so many significant digits in exponential
// form; noughts at the end stay. All else is as above, with the lowest exponent of the format. Engineering gives a
// number from 1 to 1000 and the letter of a power of 1000, 0xE4 (femto) to 0xEE (exa).
std::string numberText(double value, const NumberFormat &format);

// Degrees, minutes and seconds of at most two decimals, each with the mark: "2\x9C30\x9C0\x9C". From 10 to the 7th on
// as numberText gives it.
std::string sexagesimalText(double value);

// A fraction in lowest terms, ahead of it a whole number from 1 on: three or two numbers with 0xBB between, of at most
// ten digits and marks. Empty for what is no such fraction, whole numbers among them.
std::string fractionText(double value);

// The value without its fraction in base 2, 8 or 16, as many digits as 16 or 32 bits have.
std::string baseText(double value, int base);

// The value of that text: what Rnd gives.
double roundedAsShown(double value, const NumberFormat &format);

}  // namespace numalink
