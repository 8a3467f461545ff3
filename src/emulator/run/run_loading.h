// The items of the folder beside a program: programs, matrices and pictures into the machine. Graphical thread, ahead
// of the run. Hostile items are passed over; nothing is read outside of a payload.
#pragma once

#include <vector>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"

namespace numalink {

void loadMatrixItem(ByteView head, ByteView data);
void loadPictureItem(ByteView head, ByteView data);

// The items of the folder that the item lies in, itself among them, as the tree shows them: by name.
std::vector<ItemId> itemsBeside(ItemId item);

// After machineStart: the program first, then those of its folder ahead of it nearest first, then those behind it.
// order is the folder's items as the tree shows them. False when item is no program or can't be read.
bool loadRun(ItemId item, const std::vector<ItemId> &order);

}  // namespace numalink
