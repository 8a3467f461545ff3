// The question mark: the user keys in a whole number on the text screen. Run thread; blocks until EXE or a stop.
#pragma once

#include "emulator/machine/machine.h"

namespace numalink {

ComplexValue readNumber();

int digitOfKey(int key);  // 0 to 9, or -1

}  // namespace numalink
