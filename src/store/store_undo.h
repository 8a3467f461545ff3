// Taking back deletions and replacements, the newest first, from the opening of the library to its closing. What left
// is kept in memory, under its own ids. Any thread, each in one hold of the store's lock, as in item_store.h.
#pragma once

#include <optional>
#include <string>

#include "calculator/item_kinds.h"

namespace numalink {

struct UndoOffer {
    std::string name;          // of the item, or of the folder that was deleted
    std::size_t count = 0;     // items that come back
    bool replacement = false;  // they were replaced by others
};
std::optional<UndoOffer> storeUndoOffer();  // nothing when there is nothing to take back

// Brings back what the newest step took out, in one change. What came in its place leaves again, unless it was changed
// since: then both stay. A name that is taken by now gives the next free one; a folder that is gone gives the top
// level. False when there is nothing, or the change failed (told); shown then is as it was. Else shown is the item to
// select, noItem when there is none.
bool storeUndo(ItemId &shown);
// Undoes the undo. Only as long as nothing has been added, deleted or moved since.
bool storeRedo(ItemId &shown);
bool storeCanRedo();

// While one lives, all that its thread deletes or replaces is one step.
class UndoGroup {
public:
    UndoGroup();
    ~UndoGroup();
    UndoGroup(const UndoGroup &) = delete;
    UndoGroup &operator=(const UndoGroup &) = delete;
};

}  // namespace numalink
