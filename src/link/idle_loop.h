// The link at rest: it waits for a byte of the calculator, and the byte chooses the conversation. The link's thread.
#pragma once

#include "calculator/frames.h"

namespace numalink {

// With the line open. Returns when the conversation is over: stopped, or the line is gone. True when the line was
// lost in the middle of a transfer. isBack: the line was there before, so it is told what still waits.
bool linkIdleLoop(Family family, bool isBack = false);

}  // namespace numalink
