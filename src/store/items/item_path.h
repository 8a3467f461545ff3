// Where an item stands, told by names. Any thread.
#pragma once

#include <string>
#include <vector>

#include "calculator/item_kinds.h"
#include "store/item_store.h"

namespace numalink {

// The names of the folders from the top on, then its own, in calculator codes; a circle of folders ends at 50 of them.
std::vector<std::string> storePathOf(const ItemEntry &entry);

}  // namespace numalink
