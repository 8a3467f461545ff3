// The one machine of the process.
#include "emulator/machine/machine.h"

#include "emulator/machine/run_observer.h"

namespace numalink {

EmulatorMachine machine;
std::atomic<int> keyCode = 0;
std::atomic<bool> emulatorRunning = false;

void setScreenMode(int mode) {
    machine.shortCopy = machine.screenMode == graphMode && mode == textMode;
    const bool changes = machine.screenMode != mode;
    machine.screenMode = mode;
    if (!changes) return;
    if (const RunObserver *observer = observing()) observer->screenModeChanged(mode);
}

int cutToInteger(double value) {
    constexpr double limit = 2147483646;
    if (!(value > -limit)) return -static_cast<int>(limit);  // also what is no number
    return static_cast<int>(value < limit ? value : limit);
}

}  // namespace numalink
