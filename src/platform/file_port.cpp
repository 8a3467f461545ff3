#include "platform/file_port.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace numalink {

namespace {

constexpr std::uint64_t offsetLimit = INT64_MAX;

bool isDenied(int cause) { return cause == EACCES || cause == EPERM || cause == EROFS; }

OpenResult openWith(const char *path, int flags, int lock, int &file) {
    const bool own = (flags & O_NOFOLLOW) != 0;
    // O_NONBLOCK: a pipe in the place of the library doesn't hold the program.
    const int opened = open(path, flags | O_CLOEXEC | O_NONBLOCK, 0666);
    if (opened < 0 && own && errno == ELOOP) return OpenResult::linked;
    if (opened < 0 && errno == ENOENT && (flags & O_CREAT) == 0) return OpenResult::absent;
    if (opened < 0) return isDenied(errno) ? OpenResult::denied : OpenResult::failed;
    struct stat facts {};
    OpenResult result = OpenResult::opened;
    if (fstat(opened, &facts) != 0 || !S_ISREG(facts.st_mode)) result = OpenResult::failed;
    if (result == OpenResult::opened && own && facts.st_nlink > 1) result = OpenResult::linked;
    // flock goes with the open file itself: closing some other descriptor of it doesn't let go.
    if (result == OpenResult::opened && flock(opened, lock | LOCK_NB) != 0)
        result = errno == EWOULDBLOCK ? OpenResult::heldByAnother : OpenResult::failed;
    if (result != OpenResult::opened) {
        close(opened);
        return result;
    }
    file = opened;
    return result;
}

int writing(bool create) { return O_RDWR | (create ? O_CREAT : 0); }

OpenResult openLocked(const char *path, bool create, int &file) {
    return openWith(path, writing(create), LOCK_EX, file);
}
OpenResult openOwn(const char *path, bool create, int &file) {
    return openWith(path, writing(create) | O_NOFOLLOW, LOCK_EX, file);
}
OpenResult openToRead(const char *path, int &file) { return openWith(path, O_RDONLY, LOCK_SH, file); }

FileFault lastFault() {
    switch (errno) {
        case ENOSPC:
        case EDQUOT:
            return FileFault::full;
        case EACCES:
        case EPERM:
        case EROFS:
            return FileFault::denied;
        case EIO:
            return FileFault::unreadable;
        default:
            return FileFault::other;
    }
}

std::int64_t sizeOf(int file) {
    struct stat facts {};
    return fstat(file, &facts) == 0 ? static_cast<std::int64_t>(facts.st_size) : -1;
}

// Calls once(place, at, rest) until all is moved, or it moves nothing more.
template <typename Once>
std::size_t moveAll(std::uint64_t offset, std::size_t count, Once once) {
    std::size_t done = 0;
    if (offset > offsetLimit || count > offsetLimit - offset) return 0;
    while (done < count) {
        const ssize_t moved = once(done, static_cast<off_t>(offset + done), count - done);
        if (moved < 0 && errno == EINTR) continue;
        if (moved == 0) errno = ENOSPC;  // of a write; for reading, the file has ended, which is the caller's to judge
        if (moved <= 0) break;
        done += static_cast<std::size_t>(moved);
    }
    return done;
}

std::size_t readAt(int file, std::uint64_t offset, void *bytes, std::size_t count) {
    return moveAll(offset, count, [&](std::size_t place, off_t at, std::size_t rest) {
        return pread(file, static_cast<std::uint8_t *>(bytes) + place, rest, at);
    });
}

std::size_t writeAt(int file, std::uint64_t offset, const void *bytes, std::size_t count) {
    return moveAll(offset, count, [&](std::size_t place, off_t at, std::size_t rest) {
        return pwrite(file, static_cast<const std::uint8_t *>(bytes) + place, rest, at);
    });
}

bool cut(int file, std::uint64_t size) {
    int result = -1;
    if (size > offsetLimit) return false;
    do result = ftruncate(file, static_cast<off_t>(size));
    while (result != 0 && errno == EINTR);
    return result == 0;
}

bool sync(int file) {
    int result = -1;
    do result = fdatasync(file);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

std::optional<bool> isNamed(int file, const char *path) {
    struct stat facts {
    }, there{};
    if (fstat(file, &facts) != 0) return std::nullopt;
    if (stat(path, &there) == 0) return facts.st_dev == there.st_dev && facts.st_ino == there.st_ino;
    return errno == ENOENT || errno == ENOTDIR || errno == ELOOP ? std::optional(false) : std::nullopt;
}

void giveRights(int from, int to) {
    struct stat facts {};
    if (fstat(from, &facts) != 0) return;
    // Another owner is for root alone, and takes some rights away: so it comes first.
    constexpr uid_t sameOwner = static_cast<uid_t>(-1);
    [[maybe_unused]] const bool owned =
        fchown(to, facts.st_uid, facts.st_gid) == 0 || fchown(to, sameOwner, facts.st_gid) == 0;
    [[maybe_unused]] const bool given = fchmod(to, facts.st_mode & 07777) == 0;
}

bool realPath(const char *path, std::string &real) {
    const std::unique_ptr<char, decltype(&std::free)> found(realpath(path, nullptr), std::free);
    if (found) real = found.get();
    return found != nullptr;
}

bool syncFolder(const char *path) {
    const std::string name(path);
    const std::size_t slash = name.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : name.substr(0, slash + 1);
    const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) return errno == EACCES;  // a folder that may be written but not listed can't be waited for
    int result = -1;
    do result = fsync(opened);
    while (result != 0 && errno == EINTR);
    const bool done = result == 0 || errno == EINVAL || errno == ENOTSUP;  // nothing to wait for on such a disk
    close(opened);
    return done;
}

}  // namespace

const FilePort systemFilePort = {
    .openLocked = openLocked,
    .openOwn = openOwn,
    .openToRead = openToRead,
    .size = sizeOf,
    .readAt = readAt,
    .writeAt = writeAt,
    .cut = cut,
    .sync = sync,
    .close = [](int file) { ::close(file); },
    .remove = [](const char *path) { return ::unlink(path) == 0; },
    .rename = [](const char *from, const char *to) { return ::rename(from, to) == 0; },
    .isNamed = isNamed,
    .giveRights = giveRights,
    .realPath = realPath,
    .syncFolder = syncFolder,
    .lastFault = lastFault,
};

FilePort filePort = systemFilePort;

}  // namespace numalink
