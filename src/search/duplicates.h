// Items that are there more than once. Any thread.
#pragma once

#include <vector>

#include "store/item_store.h"

namespace numalink {

enum class Likeness : std::uint8_t {
    bytes,  // of one kind, with the same data and the same head but for their names
    loose   // programs that are the same once colour commands, comments and empty statements are left away
};

struct Duplicates {
    Likeness likeness = Likeness::bytes;
    std::vector<ItemId> ids;  // by rising id, two at least
};

// Groups by the lowest id in them. What is in a group of the same bytes stands in a loose one by its first item alone.
std::vector<Duplicates> findDuplicates();

// What of a program counts when colours and comments don't.
Bytes essenceOf(ByteView image);

}  // namespace numalink
