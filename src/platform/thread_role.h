// Which sort of thread this is. Set once at the head of each thread's body.
#pragma once

#include <cassert>

namespace numalink {

enum class ThreadRole { unknown, graphical, link, run };
inline constexpr int threadRoleCount = 4;

inline thread_local ThreadRole threadRole = ThreadRole::unknown;

inline void assertRole([[maybe_unused]] ThreadRole expected) {
    assert(threadRole == expected && "called on the wrong thread");
}

}  // namespace numalink
