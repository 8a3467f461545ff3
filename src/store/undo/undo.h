// Taking back deletions and replacements, the newest first, from the opening of the library to its closing. What left
// is kept in memory, under its own ids. Any thread, each in one hold of the store's lock, as in item_store.h.
#pragma once

#include <optional>
#include <string>

#include "calculator/item_kinds.h"

namespace numalink {

struct UndoOffer {
    std::string name;          // of the item, or of the folder that was deleted, as it was
    std::size_t count = 0;     // items that come back
    bool replacement = false;  // they were replaced by others
};
std::optional<UndoOffer> storeUndoOffer();  // nothing when there is nothing to take back, or no memory to tell it

// What was done, for telling of it.
struct TakenBack {
    ItemId shown = noItem;  // the item to select, noItem when there is none
    UndoOffer step;
    bool changedSince = false;  // all that would leave was changed since: nothing was done, and the step is dropped
};
// Brings back what the newest step took out, in one change. What came in its place leaves again, unless it was changed,
// renamed or moved since: then both stay. A name that is taken by now gives the next free one; a folder that is gone
// gives the top level. False when there is nothing, when it was changed since, or when the change failed (told).
bool storeUndo(TakenBack &done);
// Undoes the undo. Only as long as nothing has been added, deleted or moved since, and what came back is unchanged.
bool storeRedo(TakenBack &done);
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
