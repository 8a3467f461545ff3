// How far the run has come on a way that it repeats unseen. The run thread's, but for debugWay (debugger.h).
#pragma once

#include <cstdint>

#include "debugger/debugger.h"

namespace numalink {

// Statements that the run asks to be looked at behind, so that the way can be told and ended: some milliseconds.
inline constexpr std::uint64_t wayInterval = 65536;

void wayBegins(DebugWay::Sort sort, std::uint64_t from, std::uint64_t to);  // statements; to may be the lower one
void wayAt(std::uint64_t statement);
void wayEnds();

}  // namespace numalink
