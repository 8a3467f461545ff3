// The item tree in the hands of the user: selecting, dragging, the context menu. Graphical thread only.
#pragma once

#include <cstdint>

#include "calculator/item_kinds.h"

namespace numalink {

// No label edit that the mouse starts may begin before this tick, in milliseconds of tickCount.
extern std::uint64_t labelEditBlockedUntil;
extern ItemId dragItemId;
extern bool dragActive;
extern bool dragCanDrop;

void connectTree();  // with the library open: shows it
void forgetTree();
bool dragRunning();
void endDrag();  // without a move

}  // namespace numalink
