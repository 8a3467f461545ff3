// The speed control: every statement and every evaluation pays in units of 0.3 ms unless the run goes at full speed.
// Run thread.
#pragma once

#include <atomic>

namespace numalink {

// Set by each run thread at its start from the setting FullSpeed (on when it equals 1); tests set it too.
extern std::atomic<bool> fullSpeed;

// Sleeps until the deadline of the call before has come, then sets the next: now plus units * 0.3, cut to whole
// milliseconds. So each call pays for the one ahead of it.
void paceWait(int units);

inline void pace(int units) {
    if (!fullSpeed.load(std::memory_order_relaxed)) paceWait(units);
}

namespace paceUnits {
inline constexpr int statement = 5, evaluation = 5, lineDot = 1, inputPass = 50, cursorPass = 50, straightLine = 150;
}

}  // namespace numalink
