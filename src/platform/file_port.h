// The operations that the library's files need of the system, as a table that a test can replace: by a disk in
// memory, by one whose n-th operation fails, by one that loses what wasn't synced.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace numalink {

enum class OpenResult { opened, absent, failed, denied, heldByAnother, linked };

// What kept the last operation of this thread from being done whole.
enum class FileFault { full, denied, unreadable, other };

struct FilePort {
    // Opens path for reading and writing, creating it when create is set, and takes an advisory lock (flock) that
    // goes with the open file, so that a second program fails with heldByAnother. absent: there is none, and create
    // isn't set. denied: the user may not, or the disk can't be written.
    OpenResult (*openLocked)(const char *path, bool create, int &file);
    // The same for a file that is the program's own: a link in its place, symbolic or of another name for the same
    // file, gives linked, so that nobody's file is written through it.
    OpenResult (*openOwn)(const char *path, bool create, int &file);
    // Opens path for reading, with a lock that many readers share and a writer doesn't.
    OpenResult (*openToRead)(const char *path, int &file);
    std::int64_t (*size)(int file);  // -1 on failure
    // How many bytes were read or written: fewer than count at the end of the file, on a full disk or on an error.
    std::size_t (*readAt)(int file, std::uint64_t offset, void *bytes, std::size_t count);
    std::size_t (*writeAt)(int file, std::uint64_t offset, const void *bytes, std::size_t count);
    bool (*cut)(int file, std::uint64_t size);
    bool (*sync)(int file);
    void (*close)(int file);
    bool (*remove)(const char *path);
    bool (*rename)(const char *from, const char *to);  // takes the place of what bears the new name
    // Whether the open file is what path leads to now; nothing when that can't be told.
    std::optional<bool> (*isNamed)(int file, const char *path);
    // Gives the second file the owner and the rights of the first, as far as the system lets this user.
    void (*giveRights)(int from, int to);
    // The path of what is there with all links followed; false when it can't be told.
    bool (*realPath)(const char *path, std::string &real);
    // Names that were made, changed or removed in the folder of path are on the disk when this gives true.
    bool (*syncFolder)(const char *path);
    FileFault (*lastFault)();
};

extern const FilePort systemFilePort;
extern FilePort filePort;  // systemFilePort unless a test has put in its own

}  // namespace numalink
