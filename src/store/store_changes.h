// Changes of records, as whole changes of the file: what leaves, what comes, and what is altered in place.
// On any fault neither the file nor the state in memory has changed. Only store/ includes this.
#pragma once

#include <vector>

#include "store/store_state.h"

namespace numalink {

struct NewRecord {
    ItemHeader head;
    ByteView firstPayload;
    ByteView secondPayload;
};

// Removes the records marked in leaving (by slot; empty for none), closing the gaps, and puts added, unless null,
// behind the last. The new record is safe before an old one goes. nextId becomes the store's next id.
Fault changeRecords(const std::vector<bool> &leaving, const NewRecord *added, std::uint32_t nextId)
    REQUIRES_LOCK(storeLock);

// Replaces bytes of a record in place; offset counts from the record's beginning.
Fault changeInPlace(std::size_t slot, std::size_t offset, ByteView bytes) REQUIRES_LOCK(storeLock);

Fault changeHead() REQUIRES_LOCK(storeLock);  // writes the head record

// Asked before any change: keeps a copy of a damaged file.
Fault prepareChange() REQUIRES_LOCK(storeLock);
Fault faultOf(ChangeResult result);
Bytes bytesOf(const MainHeader &main);

}  // namespace numalink
