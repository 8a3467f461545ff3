// What must hold in a fuzz target.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace numalink {

inline void require(bool holds, int line = __builtin_LINE()) {
    if (holds) return;
    std::fprintf(stderr, "line %d: what must hold doesn't\n", line);
    std::abort();
}

}  // namespace numalink
