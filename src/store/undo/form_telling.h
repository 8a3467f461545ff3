// How a change that is done is told to the listener of forms. Only store/ includes this.
#pragma once

#include <vector>

#include "store/form_changes.h"
#include "store/undo/keep_for_undo.h"

namespace numalink {

// changes as the undo keeps them; came are items beside them that have no step. Does nothing without a listener, and
// lets no fault out: the change is done.
void tellForms(const std::vector<UndoChange> &changes, const std::vector<ItemId> &came, FormCause cause)
    REQUIRES_LOCK(storeLock);
FormCause causeOf(UndoAct act, bool isNew);

}  // namespace numalink
