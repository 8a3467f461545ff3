// The only file that writes to storage.dat. A change is begun, its writes are handed over in the order in which
// they are to reach the disk, and it is committed: either all of them are done, or the file is as it was.
// Only store/ includes this. The caller holds storeLock throughout.
#pragma once

#include <span>
#include <string>

#include "platform/bytes.h"
#include "platform/file_port.h"
#include "platform/lock.h"

namespace numalink {

extern Lock storeLock;  // held for the whole length of each public operation of the store

OpenResult storeFileOpen(const std::string &path) REQUIRES_LOCK(storeLock);
void storeFileClose() REQUIRES_LOCK(storeLock);         // harmless when closed
std::int64_t storeFileSize() REQUIRES_LOCK(storeLock);  // -1 on failure
bool storeFileRead(std::uint64_t offset, std::span<std::uint8_t> bytes) REQUIRES_LOCK(storeLock);  // whole or false

enum class ChangeResult {
    done,
    refused,      // nothing has changed
    headRefused,  // the same, and it was the head record that couldn't be written
    broken        // the old state could not be brought back: no more changes until the file is opened anew
};

void changeBegin() REQUIRES_LOCK(storeLock);
void changeWrite(std::uint64_t offset, Bytes bytes) REQUIRES_LOCK(storeLock);
void changeBarrier() REQUIRES_LOCK(storeLock);  // what stands ahead is on the disk before what follows
void changeCut(std::uint64_t size) REQUIRES_LOCK(storeLock);
ChangeResult changeCommit() REQUIRES_LOCK(storeLock);  // returns when all is on the disk

// Copies the file, as it lies, to the first free name of PATH.damaged-1, PATH.damaged-2 and so on.
bool storeFileKeepCopy() REQUIRES_LOCK(storeLock);

}  // namespace numalink
