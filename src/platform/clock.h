// Time, replaceable in tests: a test's clock jumps, so that no time-out is really waited for.
#pragma once

#include <cstdint>
#include <string>

namespace numalink {

struct ClockPort {
    std::uint64_t (*tickCount)();  // milliseconds, monotonic
    void (*sleepMilliseconds)(std::uint64_t milliseconds);
    std::string (*localTime)();  // "HH:MM:SS"
    std::string (*localDate)();  // "YYYY-MM-DD"
};

extern const ClockPort systemClock;
extern ClockPort clockPort;  // systemClock unless a test has put in its own before any thread started

inline std::uint64_t tickCount() { return clockPort.tickCount(); }
inline void sleepMilliseconds(std::uint64_t milliseconds) { clockPort.sleepMilliseconds(milliseconds); }

}  // namespace numalink
