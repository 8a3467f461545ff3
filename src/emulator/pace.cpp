// The speed control. Waiting sleeps, in steps of a millisecond at the least.
#include "emulator/pace.h"

#include <algorithm>
#include <cstdint>

#include "platform/clock.h"

namespace numalink {

std::atomic<bool> fullSpeed{false};

namespace {

constexpr double unitMilliseconds = 0.3;
constexpr std::uint64_t longestWait = 45;  // of the dearest call; a clock that was set back mustn't hold a run

std::uint64_t deadline = 0;  // of the one active run thread

}  // namespace

void paceWait(int units) {
    std::uint64_t now = tickCount();
    if (now < deadline) {
        sleepMilliseconds(std::min(deadline - now, longestWait));
        now = std::max(tickCount(), deadline);
    }
    deadline = now + static_cast<std::uint64_t>(units * unitMilliseconds);
}

}  // namespace numalink
