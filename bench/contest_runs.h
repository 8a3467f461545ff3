// Runs of the contests on our emulator, for the benches that measure them.
#pragma once

#include "bench/rivals.h"

namespace numalink {

// The tables and settings that runs need, at full speed.
void prepareContests();

// In place of what is loaded; false when there is no room for it, or it is no program. Within the loading of a run.
bool loadContest(const Contest &contest, int passes);

}  // namespace numalink
