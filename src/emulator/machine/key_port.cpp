// The keys of the window: what keyCode holds.
#include "emulator/machine/key_port.h"

#include "emulator/machine/machine.h"

namespace numalink {

namespace {

int heldKey() { return keyCode.load(std::memory_order_relaxed); }

}  // namespace

const KeyPort windowKeys = {
    .getKey = heldKey,
    .waitKey = heldKey,
};

KeyPort keyPort = windowKeys;

}  // namespace numalink
