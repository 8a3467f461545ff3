// A line in memory between the link and a calculator or a stream of bytes, with a clock that jumps. The line is gone
// once the link is idle and nobody has anything to say.
#pragma once

#include <deque>

#include "platform/bytes.h"

namespace numalink {

struct ScriptedLine {
    virtual ~ScriptedLine() = default;
    virtual void hear(std::uint8_t) {}                       // what the link sends
    virtual void speak(std::deque<std::uint8_t> &said) = 0;  // adds what there is to say by now
    virtual void silence() = 0;                              // the link has waited in vain
    virtual std::uint64_t delay() { return 0; }              // milliseconds ahead of the next byte
    virtual bool isOver() = 0;                               // nothing more will be said
};

void scriptedLineInstall(ScriptedLine &line);  // which is needed until the next one
std::uint64_t scriptedLineReads();             // since it was installed: a conversation that never ends shows here

}  // namespace numalink
