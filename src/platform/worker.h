// A thread that does one work and is joined. One thread starts and joins it.
#pragma once

#include <thread>

namespace numalink {

struct Worker {
    bool start(void (*work)());  // false when the system has no thread left; the one before has been joined
    bool isStarted() const { return thread.joinable(); }  // and not joined since
    void join() { thread.join(); }

    std::thread thread;
};

}  // namespace numalink
