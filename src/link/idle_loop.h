// The link at rest: it waits for a byte of the calculator, and the byte chooses the conversation. The link's thread.
#pragma once

#include <cstdint>
#include <optional>

#include "calculator/frames.h"

namespace numalink {

// With the line open. Returns when the conversation is over: stopped, or the line is gone. True when the line was
// lost in the middle of a transfer. isBack: the line was there before, so it is told what still waits. heard: a byte of
// the calculator that was read ahead of the loop.
bool linkIdleLoop(Family family, bool isBack = false, std::optional<std::uint8_t> heard = {});

// Whether the byte begins a conversation with a calculator of that family.
bool beginsConversation(Family family, std::uint8_t byte);

void showLinkIdle(Family family);  // that it waits, in the status bar

}  // namespace numalink
