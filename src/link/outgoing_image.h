// What an item of the library looks like on its way to a calculator: its head, its data with all checksums written,
// and how they are cut into chunks. Pure; any thread.
#pragma once

#include <optional>
#include <string_view>

#include "calculator/frames.h"
#include "store/item_store.h"

namespace numalink {

// Why an item can't go to a calculator of a family.
enum class Refusal { none, kind, shorterThanHead, tooLong };
Refusal outgoingRefusal(const StoredItem &item, Family family);

// Without the two-byte colour commands, wherever these bytes stand.
Bytes imageWithoutColor(ByteView image);

// The slot that a picture's name tells ("Picture3", "picture 3"), or nothing.
std::optional<int> slotOfPictureName(std::string_view name);
int slotOfPictureHead(ByteView head);  // the digit at byte 18, or 1

struct Outgoing {
    Bytes head;
    Bytes data;
    std::size_t frameLength = 0;  // of the frames inside the data, each acknowledged; 0 when there are none
    std::size_t chunk = 16;       // bytes of one write
};

// slot counts for pictures only. The item must not be refused.
Outgoing outgoingToCfx(const StoredItem &item, bool removeColor, int slot);
Outgoing outgoingToAlgebra(const StoredItem &item);

}  // namespace numalink
