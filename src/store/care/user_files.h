// Files that are written at the user's word: exports, bitmaps, screenshots. All of them go this one road, which never
// leads onto what the program itself lives on. Graphical thread.
#pragma once

#include <string>

#include "platform/bytes.h"

namespace numalink {

// Whether path, in the file system's encoding, may be written: false when it was refused (told). Refused are folders,
// the program's own data, any library, its journal, copies and drafts, under whatever name or link they are reached.
// Another file that exists is asked about, unless it may be replaced.
bool userFileIsFree(const std::string &path, bool mayReplace);

// Asks that, and writes bytes beside path and renames them over it. False when nothing was written (told).
bool writeUserFile(const std::string &path, ByteView bytes, bool mayReplace);

// Whether the file is a library by its first bytes, wherever it lies and whatever it is called. Any thread.
bool isLibraryFile(const std::string &path);

}  // namespace numalink
