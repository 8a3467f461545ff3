// The earlier forms of the selected item: when and why each came, what it differs in, and bringing it back. Graphical
// thread only.
#pragma once

#include "calculator/item_kinds.h"

namespace numalink {

void showVersions();
bool mayHaveVersions(ItemKind itemKind);

}  // namespace numalink
