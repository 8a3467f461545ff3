// One lock type for the whole program, with the annotations that let clang check its use: it refuses to compile a line
// that touches what is GUARDED_BY a lock where that lock isn't held.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define THREAD_ATTRIBUTE(x)
#endif
#define GUARDED_BY(lock) THREAD_ATTRIBUTE(guarded_by(lock))
#define REQUIRES_LOCK(lock) THREAD_ATTRIBUTE(requires_capability(lock))

namespace numalink {

using Signal = std::condition_variable;

struct THREAD_ATTRIBUTE(capability("lock")) Lock {
    void take() THREAD_ATTRIBUTE(acquire_capability()) { mutex.lock(); }
    void give() THREAD_ATTRIBUTE(release_capability()) { mutex.unlock(); }

    std::mutex mutex;
};

struct THREAD_ATTRIBUTE(scoped_lockable) HoldLock {
    explicit HoldLock(Lock &which) THREAD_ATTRIBUTE(acquire_capability(which)) : lock(which) { lock.take(); }
    ~HoldLock() THREAD_ATTRIBUTE(release_capability()) { lock.give(); }
    HoldLock(const HoldLock &) = delete;
    HoldLock &operator=(const HoldLock &) = delete;

    // Sleeps, with the lock given up meanwhile, until the signal is notified or the time is over; it may also wake for
    // nothing. So the caller asks in a loop for what it waits for: there, unlike in a function that it would hand over,
    // clang sees that the lock is held.
    void wait(Signal &signal) {
        std::unique_lock<std::mutex> held(lock.mutex, std::adopt_lock);
        signal.wait(held);
        held.release();
    }
    void waitUntil(Signal &signal, std::chrono::steady_clock::time_point end) {
        std::unique_lock<std::mutex> held(lock.mutex, std::adopt_lock);
        signal.wait_until(held, end);
        held.release();
    }

    Lock &lock;
};

// Gives up a lock that is held, for the length of a block.
struct THREAD_ATTRIBUTE(scoped_lockable) PauseLock {
    explicit PauseLock(Lock &which) THREAD_ATTRIBUTE(release_capability(which)) : lock(which) { lock.give(); }
    ~PauseLock() THREAD_ATTRIBUTE(release_capability()) { lock.take(); }
    PauseLock(const PauseLock &) = delete;
    PauseLock &operator=(const PauseLock &) = delete;

    Lock &lock;
};

}  // namespace numalink
