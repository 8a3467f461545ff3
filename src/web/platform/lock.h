// Locks of a machine without threads: nobody else can hold one. What waits for a signal sleeps until the page lets it
// go on, which it does at every stop and key.
#pragma once

#include <chrono>

#include "platform/page.h"

#define GUARDED_BY(lock)
#define REQUIRES_LOCK(lock)

namespace numalink {

struct Signal {
    void notify_all() { pageWake(); }
};

struct Lock {
    void take() {}
    void give() {}
};

struct HoldLock {
    explicit HoldLock(Lock &) {}
    ~HoldLock() {}
    HoldLock(const HoldLock &) = delete;
    HoldLock &operator=(const HoldLock &) = delete;

    void wait(Signal &) { pageSleep(longestSleep); }
    void waitUntil(Signal &, std::chrono::steady_clock::time_point end) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        pageSleep(left < 0 ? 0 : left > longestSleep ? longestSleep : static_cast<int>(left));
    }
};

struct PauseLock {
    explicit PauseLock(Lock &) {}
    ~PauseLock() {}
    PauseLock(const PauseLock &) = delete;
    PauseLock &operator=(const PauseLock &) = delete;
};

}  // namespace numalink
