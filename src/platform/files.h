// Whole files in and out, with the cause of a failure told apart. Any thread; no state.
#pragma once

#include <cstdint>
#include <string>

#include "platform/bytes.h"

namespace numalink {

enum class FileResult { done, missing, denied, isFolder, noFile, tooLarge, diskFull, failed };

// Reads the whole of path into bytes, which is left empty unless the result is done. A file of more than
// limit bytes is tooLarge and not read. A device or pipe gives noFile, so that nothing waits for ever.
FileResult readWholeFile(const std::string &path, Bytes &bytes, std::uint64_t limit);

// Writes beside path, syncs, and renames over it: path holds either its old content or the whole new one.
// A new file takes owner and rights of the file at rightsOf, where one is given and there.
FileResult writeWholeFile(const std::string &path, ByteView bytes, const std::string &rightsOf = {});

// Makes the folder and those it lies in, where they are missing; true when their names are on the disk.
bool makeFolders(std::string path);

// Whether a path leads to anything at all.
bool fileExists(const std::string &path);

// Whether both paths lead to one file, whatever they are called: by device and number, links followed. A file that
// doesn't exist yet counts by its folder and name.
bool isSameFile(const std::string &path, const std::string &other);

}  // namespace numalink
