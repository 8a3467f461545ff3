// The deadline that statements and evaluations wait for.
#include "emulator/machine/pace.h"

#include "platform/clock.h"

namespace numalink {

std::atomic<bool> fullSpeed = false;
bool runRepeats = false;
bool paceCounted = false;
std::uint64_t paceUnitsPaid = 0, paceUnitsAhead = 0;

namespace {

// One run thread is active at a time, and each hands over with a wait: no lock.
std::uint64_t paceDeadline = 0;
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
    paceDeadline = tickCount() + static_cast<std::uint64_t>(units) * 3 / 10;
}

}  // namespace numalink
