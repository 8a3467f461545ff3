// Allocations of the test program, one of which, or all from it on, fails to order. The operators new that look here
// are those of store/failing_memory.cpp; without it nothing fails.
#pragma once

namespace numalink {

struct FailingMemory {
    int left = 0;  // allocations of this thread until the one that fails; 0: none
    bool forGood = false;
    bool failed = false;  // whether it came to that
};
inline thread_local constinit FailingMemory failingMemory;

// From now on the n-th allocation (from 1) of this thread fails, and with forGood set all after it too. 0: none.
inline void failMemory(int n, bool forGood) { failingMemory = {n, forGood, failingMemory.failed && n == 0}; }

// While such an object lives, allocations are neither counted nor fail.
struct SpareMemory {
    SpareMemory() { failingMemory.left = 0; }
    ~SpareMemory() { failingMemory.left = kept; }
    SpareMemory(const SpareMemory &) = delete;
    SpareMemory &operator=(const SpareMemory &) = delete;

    const int kept = failingMemory.left;
};

}  // namespace numalink
