// Seeded work on the library by every operation it has, and what the library holds, for tests that break in on it.
#pragma once

#include <optional>

#include "store/store_support.h"

namespace numalink {

// All items, the temporary folder's too.
using LibraryState = std::vector<StoredItem>;
LibraryState libraryState();
// Whether a start finds this where the program had left expected: but for what was in the temporary folder, which then
// is made anew.
bool isAfterStart(const LibraryState &found, const LibraryState &expected);

inline constexpr char libraryPath[] = "/library/storage.dat", journalPath[] = "/library/storage.dat-journal";
// The bytes of a name on a disk, none when there is no such name.
Bytes bytesAt(const DiskImage &image, const std::string &path);
inline Bytes libraryBytes(const DiskImage &image) { return bytesAt(image, libraryPath); }

// One operation on what is there, chosen by random alone. False when it was refused.
bool workOnce(Random &random);

}  // namespace numalink
