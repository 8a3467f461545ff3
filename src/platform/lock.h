// One lock type for the whole program, with the annotations that let clang check its use.
#pragma once

#include <mutex>

#if defined(__clang__)
#define THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define THREAD_ATTRIBUTE(x)
#endif
#define GUARDED_BY(lock) THREAD_ATTRIBUTE(guarded_by(lock))
#define REQUIRES_LOCK(lock) THREAD_ATTRIBUTE(requires_capability(lock))

namespace numalink {

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

    Lock &lock;
};

}  // namespace numalink
