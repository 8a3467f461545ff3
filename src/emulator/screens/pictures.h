// The six picture memories. They last as long as the process. Run thread;
// between runs the graphical thread.
#pragma once

#include "emulator/machine/machine.h"

namespace numalink {

Surface *pictureMemory(int number);  // null outside 1 to 6

}  // namespace numalink
