#include "platform/clock.h"

#include <algorithm>

#include "platform/page.h"
#include "platform/time_slice.h"

namespace numalink {

namespace {

constexpr double sliceLength = 12;  // milliseconds: less than a picture of a display lasts
double sliceStart = 0;

void sleepOnPage(std::uint64_t milliseconds) {
    pageSleep(static_cast<int>(std::min<std::uint64_t>(milliseconds, longestSleep)));
    sliceStart = pageNow();
}

}  // namespace

const ClockPort systemClock = {
    .tickCount = [] { return static_cast<std::uint64_t>(pageNow()); },
    .sleepMilliseconds = sleepOnPage,
    .localTime = [] { return std::string(); },
    .localDate = [] { return std::string(); },
};

ClockPort clockPort = systemClock;

void lookAtTimeSlice() {
    passesLeft = passesBetweenLooks;
    if (pageNow() - sliceStart >= sliceLength) sleepOnPage(0);
}

}  // namespace numalink
