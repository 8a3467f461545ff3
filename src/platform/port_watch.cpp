#include "platform/port_watch.h"

#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <asio/io_context.hpp>
#include <list>

#include "platform/serial_opening.h"

namespace numalink {

namespace {

constexpr std::size_t watchedLimit = 32;

asio::io_context &context() {
    static asio::io_context instance{1};
    return instance;
}

struct WatchedPort {
    explicit WatchedPort(std::string given) : path(std::move(given)) {}
    std::string path;
    asio::serial_port device{context()};
    bool released = false;  // perhaps somebody else's by now: nothing but its descriptor is touched any more
};
std::list<WatchedPort> watched;

void closeWatched(WatchedPort &port) {
    // Else closing waits until a stuck line has taken it all.
    if (!port.released) tcflush(port.device.native_handle(), TCOFLUSH);
    if (!port.released) ioctl(port.device.native_handle(), TIOCNXCL);
    asio::error_code ignored;
    port.device.close(ignored);
}

void letGo(const std::string &path) {
    for (WatchedPort &port : watched)
        if (port.path == path) closeWatched(port);
    std::erase_if(watched, [&](const WatchedPort &port) { return port.path == path; });
}

bool isWatched(const std::string &path) {
    return std::ranges::find(watched, path, &WatchedPort::path) != watched.end();
}

LineOpening openWatched(const std::string &path, unsigned baud) {
    LineOpening opening{.path = path, .group = {}};
    const int descriptor = openSerialDevice(opening);
    if (descriptor < 0) return opening;
    WatchedPort &port = watched.emplace_back(path);
    asio::error_code fault;
    port.device.assign(descriptor, fault);
    if (fault) {
        ::close(descriptor);
        watched.pop_back();
        opening.fault = LineFault::failed;
        return opening;
    }
    applySerialSettings(port.device, baud);  // what it refuses is told once it is the line
    tcflush(descriptor, TCIFLUSH);
    return opening;
}

}  // namespace

PortWatch watchPorts(const std::vector<std::string> &paths, unsigned baud) {
    PortWatch watch;
    std::vector<std::string> gone;
    for (const WatchedPort &port : watched)
        if (std::ranges::find(paths, port.path) == paths.end()) gone.push_back(port.path);
    for (const std::string &path : gone) letGo(path);
    for (const std::string &path : paths) {
        if (isWatched(path) || watched.size() >= watchedLimit) continue;
        const LineOpening opening = openWatched(path, baud);
        if (opening.fault != LineFault::none && watch.refused.path.empty()) watch.refused = opening;
    }
    watch.open = watched.size();
    return watch;
}

std::optional<WatchedByte> hearWatchedPorts(int milliseconds) {
    std::vector<pollfd> entries;
    for (WatchedPort &port : watched)
        entries.push_back({.fd = port.device.native_handle(), .events = POLLIN, .revents = 0});
    if (poll(entries.data(), entries.size(), milliseconds) <= 0) return std::nullopt;
    std::vector<std::string> gone;
    std::optional<WatchedByte> heard;
    std::size_t at = 0;
    for (const WatchedPort &port : watched) {
        const pollfd &entry = entries[at++];
        if (entry.revents == 0 || heard) continue;
        std::uint8_t byte = 0;
        const ssize_t count = ::read(entry.fd, &byte, 1);
        if (count == 1)
            heard = WatchedByte{port.path, byte};
        else if (count == 0 || (entry.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0)
            gone.push_back(port.path);
    }
    for (const std::string &path : gone) letGo(path);
    return heard;
}

void sayToWatchedPorts(std::uint8_t byte) {
    for (WatchedPort &port : watched) {
        [[maybe_unused]] const ssize_t written = ::write(port.device.native_handle(), &byte, 1);
    }
}

void releaseWatchedPorts() {
    for (WatchedPort &port : watched) {
        // Should the line refuse, whoever opens it next is told.
        [[maybe_unused]] const int unlocked = flock(port.device.native_handle(), LOCK_UN);
        [[maybe_unused]] const int shared = ioctl(port.device.native_handle(), TIOCNXCL);
        port.released = true;
    }
}

void stopWatchingPorts() {
    for (WatchedPort &port : watched) closeWatched(port);
    watched.clear();
}

}  // namespace numalink
