// Where a received item belongs in the library, and how it gets there. The link's thread.
#pragma once

#include <string>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"

namespace numalink {

struct Received {
    ItemKind kind = kind::unknown;
    std::string name;   // calculator codes; the time when the calculator gave none
    std::string group;  // of a list: the folder inside the lists' folder; else not looked at
    Bytes head;
    Bytes data;
};

std::string nameOfNow();  // "2026-11-24 17:27:08"

// Whether an item of this kind and name is where this one would go, so that this one would replace it. Creates nothing.
bool receivedNameTaken(const Received &received);

// Makes the folders that are missing and adds the item. What it replaced, or the other name that it took, is said in
// the status bar. False when the library refused it; the boxes that tell why are the caller's to show (HoldBoxes).
bool storeReceived(const Received &received);

}  // namespace numalink
