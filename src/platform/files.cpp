#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "platform/file_port.h"

namespace numalink {

namespace {

// Closes with the object; -1 is none.
struct OpenFile {
    explicit OpenFile(int number) : file(number) {}
    ~OpenFile() {
        if (file >= 0) close(file);
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    int file;
};

FileResult resultOfError(int error) {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            return FileResult::missing;
        case EACCES:
        case EPERM:
        case EROFS:
            return FileResult::denied;
        case EISDIR:
            return FileResult::isFolder;
        case ENOSPC:
        case EDQUOT:
            return FileResult::diskFull;
        case EFBIG:
            return FileResult::tooLarge;
        default:
            return FileResult::failed;
    }
}

// Reads until the end or one byte beyond the limit, so that a file which grows meanwhile is seen to.
FileResult readToEnd(int file, Bytes &bytes, std::uint64_t sizeAtFirst, std::uint64_t limit) {
    bytes.resize(static_cast<std::size_t>(sizeAtFirst) + 1);
    std::size_t filled = 0;
    for (;;) {
        if (filled == bytes.size()) bytes.resize(bytes.size() * 2);
        const ssize_t got = read(file, bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return resultOfError(errno);
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
        if (filled > limit) return FileResult::tooLarge;
    }
    bytes.resize(filled);
    return FileResult::done;
}

FileResult readFile(const std::string &path, Bytes &bytes, std::uint64_t limit) {
    // O_NONBLOCK: opening a pipe that nobody writes to doesn't wait.
    const OpenFile opened(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat facts {};
    if (opened.file < 0 || fstat(opened.file, &facts) != 0) return resultOfError(errno);
    if (S_ISDIR(facts.st_mode)) return FileResult::isFolder;
    if (!S_ISREG(facts.st_mode)) return FileResult::noFile;
    const auto size = static_cast<std::uint64_t>(facts.st_size);
    if (size > limit) return FileResult::tooLarge;
    return readToEnd(opened.file, bytes, size, limit);
}

bool writeAll(int file, ByteView bytes) {
    while (!bytes.empty()) {
        const ssize_t put = write(file, bytes.data(), bytes.size());
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return false;
        if (put == 0) {
            errno = ENOSPC;
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(put));
    }
    return true;
}

std::string folderOf(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

// A link is written through, so that it stays one. A path that can't be resolved stays as it is.
std::string targetOf(const std::string &path) {
    struct stat facts {};
    if (lstat(path.c_str(), &facts) != 0 || !S_ISLNK(facts.st_mode)) return path;
    std::error_code failure;
    const std::filesystem::path resolved = std::filesystem::canonical(path, failure);
    return failure ? path : resolved.string();
}

// A new file beside target, under a name that no other thread or program uses at the time. What a dead program of the
// same number left there is replaced.
int createBeside(const std::string &target, std::string &beside, mode_t rights) {
    static std::atomic<unsigned> serial = 0;
    beside = target + ".new-" + std::to_string(getpid()) + "-" + std::to_string(serial++);
    unlink(beside.c_str());
    return open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, rights);
}

// The rename itself survives a failing machine only when the folder is synced; a file system that can't is no fault.
void syncFolder(const std::string &folder) {
    const OpenFile opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.file >= 0) static_cast<void>(fsync(opened.file));
}

bool sameFacts(const std::string &path, const std::string &other) {
    struct stat a {
    }, b{};
    return stat(path.c_str(), &a) == 0 && stat(other.c_str(), &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

std::string nameOf(const std::string &path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

bool makeFolders(std::string path) {
    while (path.ends_with('/')) path.pop_back();
    if (path.empty() || fileExists(path)) return true;
    const std::size_t slash = path.rfind('/');
    if (slash != std::string::npos && !makeFolders(path.substr(0, slash))) return false;
    return mkdir(path.c_str(), 0777) == 0 && filePort.syncFolder(path.c_str());
}

bool fileExists(const std::string &path) {
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0;
}

bool isSameFile(const std::string &path, const std::string &other) {
    if (fileExists(path) || fileExists(other)) return sameFacts(path, other);
    return nameOf(path) == nameOf(other) && sameFacts(folderOf(path), folderOf(other));
}

FileResult readWholeFile(const std::string &path, Bytes &bytes, std::uint64_t limit) {
    const FileResult result = readFile(path, bytes, limit);
    if (result != FileResult::done) bytes.clear();
    return result;
}

FileResult writeWholeFile(const std::string &path, ByteView bytes, const std::string &rightsOf) {
    const std::string target = targetOf(path);
    struct stat old {};
    const bool replaces = stat(target.c_str(), &old) == 0;
    if (replaces && S_ISDIR(old.st_mode)) return FileResult::isFolder;
    if (replaces && !S_ISREG(old.st_mode)) return FileResult::noFile;
    if (replaces && access(target.c_str(), W_OK) != 0) return resultOfError(errno);
    std::string beside;
    constexpr mode_t own = 0600, asTheSystemGives = 0666;
    const OpenFile pattern(replaces || rightsOf.empty() ? -1 : open(rightsOf.c_str(), O_RDONLY | O_CLOEXEC));
    const OpenFile opened(createBeside(target, beside, pattern.file >= 0 ? own : asTheSystemGives));
    if (opened.file < 0) return resultOfError(errno);
    if (pattern.file >= 0) filePort.giveRights(pattern.file, opened.file);
    // The new file takes the access rights of the one that it replaces.
    const bool written = (!replaces || fchmod(opened.file, old.st_mode & 07777U) == 0) &&
                         writeAll(opened.file, bytes) && fsync(opened.file) == 0;
    if (!written || std::rename(beside.c_str(), target.c_str()) != 0) {
        const FileResult result = resultOfError(errno);
        unlink(beside.c_str());
        return result;
    }
    syncFolder(folderOf(target));
    return FileResult::done;
}

}  // namespace numalink
