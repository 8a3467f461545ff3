// What a run shows where it waits: at a display triangle and at the end of the program. Run thread.
#pragma once

#include "emulator/statements/run_state.h"

namespace numalink {

// Both block until EXE. False when the run doesn't go on.
bool showAtTriangle(const RunState &state);  // position is on the triangle
bool showAtEnd(RunState &state);

}  // namespace numalink
