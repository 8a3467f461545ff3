// Mouse and keys in the item tree: selecting, dragging, the context menu. Graphical thread only.
#pragma once

#include <cstdint>

#include "calculator/item_kinds.h"

namespace numalink {

// No label edit that the mouse starts may begin before this tick, in milliseconds of tickCount.
extern std::uint64_t labelEditBlockedUntil;
extern ItemId dragItemId;
extern bool dragActive;
extern bool dragCanDrop;

void connectTreeEvents();
bool dragRunning();
void endDrag();  // without a move

}  // namespace numalink
