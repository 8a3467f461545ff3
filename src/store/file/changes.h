// Changes of records, as whole changes of the file: what leaves, what comes, and what is altered in place.
// On any fault neither the file nor the state in memory has changed. Only store/ includes this.
#pragma once

#include <span>
#include <vector>

#include "store/file/state.h"

namespace numalink {

struct NewRecord {
    ItemHeader head;
    ByteView firstPayload;
    ByteView secondPayload;
};

// Removes the records marked in leaving (by slot; empty for none), and puts the added ones behind the last. nextId
// becomes the store's next id.
Fault changeRecords(const std::vector<bool> &leaving, std::span<const NewRecord> added, std::uint32_t nextId)
    REQUIRES_LOCK(storeLock);

// Moves the records together, at the end of a run, or when there is much to win. Until then a record that goes leaves a
// gap, so that a small change stays a small one on the disk. It goes by changes of their own, each of which leaves a
// library in order with the gap further on: so it takes little memory, and may end ahead of the last gap, which the
// next end of a run goes on with.
Fault closeGaps() REQUIRES_LOCK(storeLock);

// Bytes of records that one such change moves, and one call in all. A record above the first stays where it is.
struct GapLimits {
    std::uint64_t step = std::uint64_t{8} << 20, all = std::uint64_t{256} << 20;
};
extern GapLimits gapLimits GUARDED_BY(storeLock);

// Bytes of a record that are replaced where they lie; offset counts from the record's beginning.
struct Patch {
    std::size_t slot;
    std::size_t offset;
    Bytes bytes;
};
Fault changeInPlace(std::span<const Patch> patches) REQUIRES_LOCK(storeLock);

// Both in one change: the records marked in leaving go, and others are altered where they lie.
Fault changeAndRemove(const std::vector<bool> &leaving, std::span<const Patch> patches) REQUIRES_LOCK(storeLock);

Fault changeHead() REQUIRES_LOCK(storeLock);  // writes the head record

// Asked before any change: keeps a copy of a damaged file.
Fault prepareChange() REQUIRES_LOCK(storeLock);
Fault faultOf(ChangeResult result);
Bytes bytesOf(const MainHeader &main);

}  // namespace numalink
