#include "store/failing_memory.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int left = 0;
thread_local bool failsForGood = false;
thread_local bool failed = false;

}  // namespace

void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    const bool fails = left > 0 && --left == 0;
    if (fails && failsForGood) left = 1;
    if (fails) failed = true;
    return fails ? nullptr : std::malloc(size > 0 ? size : 1);
}
void *operator new(std::size_t size) {
    if (void *memory = operator new(size, std::nothrow)) return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }

namespace numalink {

void failMemory(int n, bool forGood) {
    left = n;
    failsForGood = forGood;
    if (n > 0) failed = false;
}

bool memoryHasFailed() { return failed; }

SpareMemory::SpareMemory() : kept(left) { left = 0; }
SpareMemory::~SpareMemory() { left = kept; }

}  // namespace numalink
