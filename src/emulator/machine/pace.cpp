// The deadline that statements and evaluations wait for.
#include "emulator/machine/pace.h"

#include <algorithm>

#include "platform/clock.h"

namespace numalink {

std::atomic<bool> fullSpeed = false;
std::atomic<bool> speedHeld = false;
std::atomic<int> paceFactor = 1;
bool runRepeats = false;
bool paceCounted = false;
std::uint64_t paceUnitsPaid = 0, paceUnitsAhead = 0;

namespace {

// One run thread is active at a time, and each hands over with a wait: no lock.
std::uint64_t paceDeadline = 0;
std::uint64_t paceRest = 0;  // tenths of a millisecond of the calculator's time
constexpr std::uint64_t longestWait = paceUnits::straightLine * 3 / 10;  // milliseconds

}  // namespace

void paceWait(int units) {
    if (runRepeats) return;
    if (paceCounted) paceUnitsPaid += static_cast<std::uint64_t>(units);
    if (!fullSpeed) paceSleep(units);
}

void paceSleep(int units) {
    const std::uint64_t now = tickCount();
    if (paceDeadline > now && paceDeadline - now <= longestWait) sleepMilliseconds(paceDeadline - now);
    const std::uint64_t step = 10 * static_cast<std::uint64_t>(std::max(paceFactor.load(std::memory_order_relaxed), 1));
    const std::uint64_t due = static_cast<std::uint64_t>(units) * 3 + (step == 10 ? 0 : paceRest);
    paceRest = due % step;
    paceDeadline = tickCount() + due / step;
}

}  // namespace numalink
