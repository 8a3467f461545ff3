// Copies of storage.dat, as it lies. Only store/ includes this. The caller holds storeLock.
#pragma once

#include <string>

#include "store/file/library_file.h"

namespace numalink {

// To the first free name of PATH.damaged-1, PATH.damaged-2 and so on; on the disk when true is given. Sectors that
// can't be read come out as zero bytes: else one of them would keep the whole library from ever being put in order.
bool storeFileKeepCopy() REQUIRES_LOCK(storeLock);
// To this path, in place of what is there, which stays until the copy is whole and on the disk.
bool storeFileCopyTo(const std::string &path) REQUIRES_LOCK(storeLock);
// A new file of these bytes in the place of storage.dat: it, or the old one, whole. The store goes on with the old one,
// and is to be closed next.
bool storeFileReplace(ByteView bytes) REQUIRES_LOCK(storeLock);
// The same with what the file at this path holds.
bool storeFileReplaceBy(const std::string &path) REQUIRES_LOCK(storeLock);

}  // namespace numalink
