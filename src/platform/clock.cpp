#include "platform/clock.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace numalink {

namespace {

std::string formatted(const char *format) {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    char text[32];
    return {text, std::strftime(text, sizeof text, format, &parts)};
}

std::uint64_t monotonicMilliseconds() {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

}  // namespace

const ClockPort systemClock = {
    .tickCount = monotonicMilliseconds,
    .sleepMilliseconds =
        [](std::uint64_t milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); },
    .localTime = [] { return formatted("%H:%M:%S"); },
    .localDate = [] { return formatted("%Y-%m-%d"); },
};

ClockPort clockPort = systemClock;

}  // namespace numalink
