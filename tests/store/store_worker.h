// Seeded work on the library by every operation it has, and what the library holds, for tests that break in on it.
#pragma once

#include <optional>

#include "store/store_support.h"

namespace numalink {

// All items but the temporary folder's, which no start keeps.
using LibraryState = std::vector<StoredItem>;
LibraryState libraryState();

// One operation on what is there, chosen by random alone. False when it was refused.
bool workOnce(Random &random);

}  // namespace numalink
