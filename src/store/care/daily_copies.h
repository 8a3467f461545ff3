// Copies of the library in the folder backups/ beside it, storage-YYYY-MM-DD.dat: one a day, of the last ten days on
// which the library had changed. Files with other names than a date gives are let be. restoreLibrary brings one back.
#pragma once

#include <cstddef>

#include "store/file/copy_names.h"

namespace numalink {

inline constexpr std::size_t dailyCopyLimit = 10;

// Makes today's copy when there is none and the library differs from the newest; copies beyond the limit go, the oldest
// first, and ahead of them those of days to come, which some wrong clock has dated. Of a damaged library none is made,
// so that the sound ones stay. False when it can't be made (not told), as of a file that a change has left half-way.
// After storeOpen, any thread.
bool keepDailyCopy();

}  // namespace numalink
