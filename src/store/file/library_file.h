// The only file that writes to storage.dat and to its journal. A change is begun, its writes are handed over in any
// order, and it is committed: either all of them are on the disk, or the file is as it was, whatever happens meanwhile.
// Only store/ includes this. The caller holds storeLock throughout.
//
// How a change goes, by what is on the disk at each instant:
//   (1) The journal is written and synced: what the change is going to write over. storage.dat is untouched.
//   (2) storage.dat is written and synced. Opened from here, the journal brings the old bytes back, unless all the new
//       ones are there: then they are written and synced once more.
//   (3) The journal's first bytes are wiped. That needs no sync: with it or without, the file is the new one.
#pragma once

#include <span>
#include <string>

#include "platform/bytes.h"
#include "platform/file_port.h"
#include "platform/lock.h"

namespace numalink {

extern Lock storeLock;  // held for the whole length of each public operation of the store

// A file that may be read but not written is opened for reading.
OpenResult storeFileOpen(const std::string &path, bool create) REQUIRES_LOCK(storeLock);
bool storeFileIsReadOnly() REQUIRES_LOCK(storeLock);  // then every change is refused, and no file is touched
// Harmless when closed. Removes the journal, unless it is still needed.
void storeFileClose() REQUIRES_LOCK(storeLock);
const std::string &storeFilePath() REQUIRES_LOCK(storeLock);  // with links followed, as the journal's is
std::string storeJournalPath() REQUIRES_LOCK(storeLock);
std::int64_t storeFileSize() REQUIRES_LOCK(storeLock);                                             // -1 on failure
bool storeFileRead(std::uint64_t offset, std::span<std::uint8_t> bytes) REQUIRES_LOCK(storeLock);  // whole or false
bool storeFileIsBroken() REQUIRES_LOCK(storeLock);  // a change is in it half-way, until it is opened anew
// Gives another open file the owner and the rights of storage.dat.
void storeFileGiveRights(int other) REQUIRES_LOCK(storeLock);
// For bytes that have no meaning, behind the end of the records. Without effect when anything is in doubt.
void storeFileCut(std::uint64_t size) REQUIRES_LOCK(storeLock);

enum class Recovery {
    nothing,      // no change was interrupted
    broughtBack,  // one was, and its old bytes are in the file again
    foreign,      // a journal whose bytes belong to another file: to be set aside, and the file can be used
    linked,       // a link lies in the journal's place, symbolic or of another name for the same file: it can't be used
    unread,  // a journal that can't be read, or not by this version: what the file lacks isn't known; it can't be used
    failed   // the old bytes could not be brought back: the same, and the journal stays
};
// Asked once after opening, ahead of any reading. With apply unset, as for a file that is only read, nothing is
// written: broughtBack means would be.
Recovery storeFileRecover(bool apply) REQUIRES_LOCK(storeLock);
// Gives the journal another name, which is given; empty when that fails.
std::string storeJournalSetAside() REQUIRES_LOCK(storeLock);
// Does so with a journal that isn't whole, ahead of the first change of a damaged library: it may be of help. False
// when it fails.
bool storeJournalKeepTorn() REQUIRES_LOCK(storeLock);

enum class ChangeResult {
    done,
    refused,      // nothing has changed; lastRefusal tells why
    headRefused,  // the same, and it was the head record that couldn't be written
    broken,       // the old state could not be brought back: no more changes until the file is opened anew
    replaced      // nothing has changed, as a name leads to another file than the open one: no more changes either
};

// Why the last change of this thread was refused.
enum class RefusalCause {
    unknown,
    full,    // the disk has no room
    denied,  // no right to write
    disk,    // it doesn't give or take bytes
    linked   // the journal's place is taken by a link
};
struct Refusal {
    RefusalCause cause = RefusalCause::unknown;
    std::uint64_t room = 0;  // bytes that the change takes on the disk meanwhile
};
const Refusal &lastRefusal();
void forgetRefusal();

void changeBegin() REQUIRES_LOCK(storeLock);
void changeWrite(std::uint64_t offset, Bytes bytes) REQUIRES_LOCK(storeLock);  // a later one covers an earlier one
// Returns when all is on the disk. Throws nothing once the file has been touched.
ChangeResult changeCommit() REQUIRES_LOCK(storeLock);

}  // namespace numalink
