// The one machine of the process.
#include "emulator/machine/machine.h"

namespace numalink {

EmulatorMachine machine;
std::atomic<int> keyCode = 0;
std::atomic<bool> emulatorRunning = false;

void setScreenMode(int mode) {
    machine.shortCopy = machine.screenMode == graphMode && mode == textMode;
    machine.screenMode = mode;
}

int cutToInteger(double value) {
    constexpr double limit = 2147483646;
    if (!(value > -limit)) return -static_cast<int>(limit);  // also what is no number
    return static_cast<int>(value < limit ? value : limit);
}

}  // namespace numalink
