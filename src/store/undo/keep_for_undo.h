// How the operations hand over what they are about to change, so that it can be taken back later. Only store/ includes
// this; the undoing itself is in store/undo/undo.h. The caller holds storeLock.
#pragma once

#include <optional>
#include <vector>

#include "store/file/state.h"
#include "store/undo/undo.h"

namespace numalink {

// What one act has made of one item. The temporary folder and what lies in it count as not there. What an item becomes
// is kept as a digest of its name, parent, kind and payloads, which tells whether anybody has changed it since.
struct UndoChange {
    ItemId id = noItem;
    std::optional<StoredItem> before;    // nothing: it came
    std::optional<std::uint64_t> after;  // nothing: it left
};

struct UndoStep {
    std::uint64_t group = 0;
    UndoAct act = UndoAct::deletion;
    std::string name;                 // of what it was done to
    std::vector<UndoChange> changes;  // a folder stands ahead of what it holds
    std::vector<ItemId> came = {};    // new items that aren't taken back: told of, no more
};

// A step with room kept for it in the list. Ahead of the change, as all that is noted in it.
UndoStep newUndoStep(UndoAct act, std::string_view name) REQUIRES_LOCK(storeLock);

// The record leaves, with all that it holds. The change is refused when this is.
Fault noteLeaving(std::size_t slot, UndoStep &step) REQUIRES_LOCK(storeLock);

// The parts of an item that become others.
struct Becoming {
    std::optional<std::string_view> name = {};
    std::optional<ItemId> parent = {};
    std::optional<ItemKind> kind = {};
    std::optional<ByteView> head = {};
    std::optional<ByteView> data = {};
};
Fault noteBecoming(std::size_t slot, const Becoming &becoming, UndoStep &step) REQUIRES_LOCK(storeLock);

// A new record in the place of one that leaves; or one that simply comes, which counts where arrivals are taken back.
void noteReplacing(const ItemEntry &entry, ByteView head, ByteView data, UndoStep &step) REQUIRES_LOCK(storeLock);
void noteArrival(const ItemEntry &entry, ByteView head, ByteView data, UndoStep &step) REQUIRES_LOCK(storeLock);

// Once the change is done, which whoever follows forms is told; allocates nothing else. It stands with its group,
// whatever else was kept meanwhile. The oldest groups go when all of them hold too much.
void keepUndoStep(UndoStep step) REQUIRES_LOCK(storeLock);
void forgetUndoSteps() REQUIRES_LOCK(storeLock);

}  // namespace numalink
