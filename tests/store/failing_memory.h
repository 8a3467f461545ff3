// Every allocation of the test program, and one of them, or all from it on, that fails to order.
#pragma once

namespace numalink {

// From now on the n-th allocation (from 1) of this thread fails, and with forGood set all after it too. 0: none.
void failMemory(int n, bool forGood);
// Whether it came to that.
bool memoryHasFailed();

// While such an object lives, allocations are neither counted nor fail.
struct SpareMemory {
    SpareMemory();
    ~SpareMemory();
    SpareMemory(const SpareMemory &) = delete;
    SpareMemory &operator=(const SpareMemory &) = delete;

    int kept;
};

}  // namespace numalink
