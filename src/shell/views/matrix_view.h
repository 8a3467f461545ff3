// A matrix or list on view: its table, drawn part by part, with a picked cell that the arrow keys move. Graphical
// thread only.
#pragma once

#include <string>

#include "store/item_store.h"

namespace numalink {

// sizeLine goes to the status bar, with the picked cell behind it: the value below a large table is out of sight.
void showMatrix(const StoredItem &item, const std::string &sizeLine);
void forgetMatrixView();

}  // namespace numalink
