// The speed control: every statement and every evaluation pays in units of 0.3 ms unless the run goes at full speed.
// Run thread.
#pragma once

#include <atomic>
#include <cstdint>

namespace numalink {

// Set by each run thread at its start from the setting FullSpeed (on when it equals 1); tests set it too.
extern std::atomic<bool> fullSpeed;

// A run goes at full speed while it is set, whatever the setting says; who sets it sets fullSpeed as well. Any thread.
extern std::atomic<bool> speedHeld;

// How many times as fast as the calculator a run goes that isn't at full speed, from 1; kept from run to run. Any
// thread.
extern std::atomic<int> paceFactor;

// What runs has run before, or is an expression beside the run: nothing is waited for, counted or told. Run thread.
extern bool runRepeats;

// The units that have been paid since they began to be counted, also at full speed. Run thread.
extern bool paceCounted;
extern std::uint64_t paceUnitsPaid;
extern std::uint64_t paceUnitsAhead;  // of these, those for the statement that comes next

// Sleeps until the deadline of the call before has come, then sets the next: now plus units * 0.3, cut to whole
// milliseconds. So each call pays for the one ahead of it. Faster than the calculator, what is cut is kept for later.
void paceSleep(int units);
void paceWait(int units);  // counts the units where they are counted, and sleeps unless at full speed

inline void pace(int units) {
    if (!fullSpeed.load(std::memory_order_relaxed) || paceCounted) paceWait(units);
}

namespace paceUnits {
inline constexpr int statement = 5, evaluation = 5, lineDot = 1, inputPass = 50, cursorPass = 50, straightLine = 150;
}

}  // namespace numalink
