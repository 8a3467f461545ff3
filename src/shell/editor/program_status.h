// What the status bar says of a program: its size, and that it has a password. Graphical thread only.
#pragma once

#include "store/item_store.h"

namespace numalink {

void programToStatus(const StoredItem &item);
void programToStatus(ItemId id);

}  // namespace numalink
