// What the runner alone asks of the waits.
#pragma once

#include "emulator/statements/run_state.h"

namespace numalink {

void runEndForget(RunEnd cause);  // a new run: not halted, with that as what runEndCause tells
RunEnd runEndCause();
void runWake();  // behind clearing emulatorRunning: ends the sleeps of waits

}  // namespace numalink
