// Which family of calculators the settings name, and the speed of its line. Any thread.
#pragma once

#include "calculator/frames.h"

namespace numalink {

Family linkFamily();  // ALGEBRA for "algebra" in any case, CFX for every other value
constexpr unsigned familyBaud(Family family) { return family == Family::cfx ? 9600 : 38400; }

}  // namespace numalink
