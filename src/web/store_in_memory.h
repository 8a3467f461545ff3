// The items of a page in the place of a library: what a run reads of it, by the functions of store/item_store.h. Their
// ids count from 1 in the order of the bundle; all lie in one folder.
#pragma once

#include <vector>

#include "calculator/item_bundle.h"

namespace numalink {

inline constexpr ItemId firstPageItem = 1;

void setPageItems(std::vector<BundledItem> items);
const std::vector<BundledItem> &pageItems();

}  // namespace numalink
