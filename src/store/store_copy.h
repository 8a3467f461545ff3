// Copies of storage.dat, as it lies. Only store/ includes this. The caller holds storeLock.
#pragma once

#include <string>

#include "store/store_file.h"

namespace numalink {

// To the first free name of PATH.damaged-1, PATH.damaged-2 and so on; on the disk when true is given.
bool storeFileKeepCopy() REQUIRES_LOCK(storeLock);
// To this path, in place of what is there, which stays until the copy is whole and on the disk.
bool storeFileCopyTo(const std::string &path) REQUIRES_LOCK(storeLock);

}  // namespace numalink
