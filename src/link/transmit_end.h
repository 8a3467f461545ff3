// What the two transmit conversations share: the next item of the queue, what is dropped, and the temporary folder.
// The link's thread.
#pragma once

#include <optional>

#include "link/transmit_queue.h"

namespace numalink {

struct NextItem {
    QueuedItem entry;
    StoredItem item;
};

// The first entry that can go to this family. Entries whose item is gone are passed over with a word; nothing when
// the queue is empty.
std::optional<NextItem> nextToTransmit();

void tellCannotGo(const NextItem &next, Refusal refusal);  // a box; the entry is dropped
void dropQueue();                                          // after a failure: says how many were dropped
void tellSent(const NextItem &next);                       // takes the entry off the queue

// Ends a transmission on every way out: what was sent from the temporary folder goes from there.
void clearSentFromTemp();

}  // namespace numalink
