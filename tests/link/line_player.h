// Plays a recording through a pseudo terminal: the real line carries every byte, and a clock that jumps takes the
// place of waiting.
#pragma once

#include <string>

#include "link/line_script.h"

namespace numalink {

enum class PlayMode {
    whole,  // what the calculator sends comes at once
    alone,  // every byte by itself
    late    // and each just before the read would give up
};

// Empty when everything went, was shown and was stored as recorded; else what differs first.
std::string playLineScript(const LineScript &script, PlayMode mode);

}  // namespace numalink
