// An image in the place of a stored program's, with all that goes with it. Any thread.
#pragma once

#include "calculator/item_kinds.h"
#include "platform/bytes.h"
#include "store/item_store.h"

namespace numalink {

// The item with this image for its own: its head tells the new length. item is a program or another text.
NewItem itemWithImage(const StoredItem &item, Bytes image);

// Stores it; a step that can be taken back. False when the item isn't there, is no text, or can't be written (told).
bool writeProgramImage(ItemId id, Bytes image);

}  // namespace numalink
