// The work of a machine without threads is done by whoever joins it.
#pragma once

namespace numalink {

struct Worker {
    bool start(void (*newWork)()) {
        work = newWork;
        return true;
    }
    bool isStarted() const { return work != nullptr; }
    void join() {
        void (*const due)() = work;
        work = nullptr;
        due();
    }

    void (*work)() = nullptr;
};

}  // namespace numalink
