// Taking back what was done to the items, the newest first, from the opening of the library to its closing: deleting,
// replacing, storing anew, renaming, moving, importing. What was is kept in memory, under its own ids. Any thread, each
// in one hold of the store's lock, as in item_store.h.
#pragma once

#include <optional>
#include <string>

#include "calculator/item_kinds.h"

namespace numalink {

// Bytes of items that are kept to be brought back. Beyond it the oldest steps go; the newest stays, however large.
inline constexpr std::size_t undoMemoryLimit = std::size_t{32} << 20;

enum class UndoAct { deletion, replacement, edit, rename, move, import };

struct UndoOffer {
    UndoAct act = UndoAct::deletion;
    std::string name;  // calculator codes: of the item or folder, of a renamed one its new name, of an import its own
    std::size_t count = 0;  // items that the act was done to
};
std::optional<UndoOffer> storeUndoOffer();  // nothing when there is nothing to take back, or no memory to tell it

// What was done, for telling of it.
struct TakenBack {
    ItemId shown = noItem;  // the item to select, noItem when there is none
    UndoOffer step;
    bool changedSince = false;  // all that it is about was changed since: nothing was done, and the step is dropped
};
// Takes the newest step back, in one change. What came leaves again, and what was altered is as before, unless it was
// changed, renamed or moved since: then it stays, beside what it had replaced. A folder that came stays where something
// else lies in it. A name that is taken by now gives the next free one; a folder that is gone gives the top level.
// False when there is nothing, when it was changed since, or when the change failed (told).
bool storeUndo(TakenBack &done);
// Undoes the undo. Only as long as nothing has been added, deleted, moved or altered since.
bool storeRedo(TakenBack &done);
bool storeCanRedo();

// While one lives, all that its thread deletes, replaces, moves or alters is one step. One for an import has a name,
// and what comes to stand in the library meanwhile leaves again with it.
class UndoGroup {
public:
    UndoGroup();
    explicit UndoGroup(UndoAct act, std::string name = {});
    ~UndoGroup();
    UndoGroup(const UndoGroup &) = delete;
    UndoGroup &operator=(const UndoGroup &) = delete;
};

}  // namespace numalink
