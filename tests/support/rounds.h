// How often a test goes round, where more rounds find more.
#pragma once

#include <cstdlib>

namespace numalink {

// The number in this environment variable, or the other one.
inline int countFromEnvironment(const char *variable, int otherwise) {
    const char *count = std::getenv(variable);
    return count != nullptr ? std::atoi(count) : otherwise;
}

}  // namespace numalink
