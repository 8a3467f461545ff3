// The keys of the window: what keyCode holds.
#include "emulator/key_port.h"

#include "emulator/machine.h"

namespace numalink {

const KeyPort windowKeys = {
    .getKey = [] { return keyCode.load(std::memory_order_relaxed); },
    .beforeWaitTest = [] { return true; },
};

KeyPort keyPort = windowKeys;

}  // namespace numalink
