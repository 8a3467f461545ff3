// The link at rest: it waits for a byte of the calculator, and the byte chooses the conversation. The link's thread.
#pragma once

#include "calculator/frames.h"

namespace numalink {

// With the line open. Returns when the conversation is over: stopped, or the line is gone. True when the line was
// lost in the middle of a transfer.
bool linkIdleLoop(Family family);

}  // namespace numalink
