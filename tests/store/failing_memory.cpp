// The program's allocations, of which a test has some fail.
#include "support/failing_memory.h"

#include <cstdlib>
#include <new>

using numalink::failingMemory;

// NOLINTBEGIN(cppcoreguidelines-no-malloc): what new and delete stand on
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    const bool fails = failingMemory.left > 0 && --failingMemory.left == 0;
    if (fails && failingMemory.forGood) failingMemory.left = 1;
    if (fails) failingMemory.failed = true;
    return fails ? nullptr : std::malloc(size > 0 ? size : 1);
}
void *operator new(std::size_t size) {
    if (void *memory = operator new(size, std::nothrow)) return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }
// NOLINTEND(cppcoreguidelines-no-malloc)
