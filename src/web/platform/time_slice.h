// Long work gives the page a turn now and then. The clock is asked once in so many passes: one is a statement, 4,096 of
// the shortest ones, or an evaluation within a call.
#pragma once

namespace numalink {

inline constexpr int passesBetweenLooks = 64;
inline int passesLeft = passesBetweenLooks;
void lookAtTimeSlice();

inline void timeSlicePassed() {
    if (--passesLeft <= 0) lookAtTimeSlice();
}

}  // namespace numalink
