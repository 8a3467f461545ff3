// What the checks of a program want to know of its folder and of the settings. Any thread.
#pragma once

#include "calculator/item_kinds.h"
#include "language/problems.h"

namespace numalink {

// Of a program of the library: the others of its folder, its own name, the type of calculator and what is transmitted.
// A folder's programs are read for it.
ProblemContext problemContextOf(ItemId item);
ProblemContext problemContextAlone();  // of one from elsewhere: what the settings say

}  // namespace numalink
