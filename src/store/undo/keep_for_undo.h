// How the operations hand over what leaves, so that it can be taken back later. Only store/ includes this; the
// undoing itself is in store_undo.h. The caller holds storeLock.
#pragma once

#include <vector>

#include "store/file/state.h"

namespace numalink {

// An item by what it was at the time, so that one that was changed, renamed or moved since is told apart.
struct ItemDigest {
    ItemId id = noItem;
    std::uint64_t digest = 0;
};
std::uint64_t digestOf(const ItemEntry &entry, ByteView head, ByteView data);  // of entry: name, parent, kind

struct UndoStep {
    std::uint64_t group = 0;
    std::vector<StoredItem> items;  // what left; a folder stands ahead of what it holds
    std::vector<ItemDigest> cameInstead;
};

// Reads the record with all that it holds. Of the temporary folder nothing is kept. To be asked ahead of the change,
// which is refused when this is.
Fault undoStepFor(std::size_t slot, UndoStep &step) REQUIRES_LOCK(storeLock);
// Once the change is done; allocates nothing. It stands with its group, whatever else was kept meanwhile.
void keepUndoStep(UndoStep step) REQUIRES_LOCK(storeLock);
void forgetUndoSteps() REQUIRES_LOCK(storeLock);

}  // namespace numalink
