// The items that wait for a calculator. Until the link is built nothing can be queued: both refuse.
#pragma once

#include "calculator/item_kinds.h"

namespace numalink {

bool transmitAvailable();   // whether the program can transmit at all
bool queueItem(ItemId id);  // false when refused
void beginTransmit();

}  // namespace numalink
