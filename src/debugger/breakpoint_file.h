// The breakpoints beside the library, in breakpoints.json, over restarts. The library itself knows nothing of them.
#pragma once

#include <string>

namespace numalink {

inline constexpr char breakpointFileName[] = "breakpoints.json";

// Into the list, in place of what stands there. A file that is missing or makes no sense leaves the list empty (false
// for the latter); of one that is partly wrong the sound records count. At most 1,000 are read.
bool breakpointsLoad(const std::string &folder);
// False when it can't be written. An empty list takes the file away.
bool breakpointsSave(const std::string &folder);

}  // namespace numalink
