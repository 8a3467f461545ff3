// Items as the windows about the library call them, and what follows once they have changed. Graphical thread only.
#pragma once

#include <QString>

#include "calculator/item_kinds.h"
#include "store/item_store.h"

namespace numalink {

QString pathOfItem(const ItemEntry &entry);  // "Games/SNAKE"

// The tree and the view as the library has it now, once items have changed behind a dialog. The view must hold nothing
// that isn't stored.
void showChangedItems();

}  // namespace numalink
