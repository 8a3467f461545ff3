// A line in memory between the link and a calculator or a stream of bytes, with a clock that jumps. The line is gone
// once the link is idle and nobody has anything to say.
#pragma once

#include <deque>
#include <functional>
#include <optional>

#include "platform/bytes.h"

namespace numalink {

struct ScriptedLine {
    std::function<void(std::uint8_t)> hear;                 // what the link sends
    std::function<void(std::deque<std::uint8_t> &)> speak;  // adds what there is to say by now
    std::function<void()> silence;                          // the link has waited in vain
    std::function<std::uint64_t()> delay;                   // milliseconds ahead of the next byte
    std::function<bool()> isOver;                           // nothing more will be said
};

void scriptedLineInstall(ScriptedLine line);
std::uint64_t scriptedLineReads();  // since it was installed: a conversation that never ends shows here

}  // namespace numalink
