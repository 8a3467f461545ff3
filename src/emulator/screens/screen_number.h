// The text of a number on the calculator's screens. Pure; any thread; whatever the locale.
#pragma once

#include <string>

namespace numalink {

// Ten significant digits in calculator codes: 0x87 is the minus, 0x89 the exponent's plus, 0xDF the exponent mark.
// Exponential below 0.1 and from 10 to the 10th on. "Inf" and "NaN" for what isn't finite.
std::string numberText(double value);

}  // namespace numalink
