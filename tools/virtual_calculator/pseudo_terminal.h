// The calculator's end of a pseudo terminal whose other end the program opens as its serial device.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

namespace numalink {

struct PseudoTerminal {
    PseudoTerminal() : master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        char name[128] = "";
        termios state{};
        if (grantpt(master) != 0 || unlockpt(master) != 0 || ptsname_r(master, name, sizeof name) != 0) return;
        if (tcgetattr(master, &state) != 0) return;
        cfmakeraw(&state);
        if (tcsetattr(master, TCSANOW, &state) == 0 && fcntl(master, F_SETFL, O_NONBLOCK) == 0) path = name;
    }
    ~PseudoTerminal() { unplug(); }
    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    void unplug() {
        if (master >= 0) ::close(master);
        master = -1;
    }
    void put(const std::vector<std::uint8_t> &bytes) const {
        for (std::size_t at = 0; at < bytes.size();) {
            pollfd entry{master, POLLOUT, 0};
            if (poll(&entry, 1, 2000) <= 0) return;
            const ssize_t count = ::write(master, bytes.data() + at, bytes.size() - at);
            if (count > 0) at += static_cast<std::size_t>(count);
        }
    }
    // Up to count bytes, as they come within the time.
    std::vector<std::uint8_t> take(std::size_t count, int milliseconds) const {
        std::vector<std::uint8_t> bytes;
        while (bytes.size() < count) {
            pollfd entry{master, POLLIN, 0};
            if (poll(&entry, 1, milliseconds) <= 0 || (entry.revents & POLLIN) == 0) break;
            std::uint8_t buffer[4096];
            const std::size_t wanted = count - bytes.size() < sizeof buffer ? count - bytes.size() : sizeof buffer;
            const ssize_t got = ::read(master, buffer, wanted);
            if (got <= 0) break;
            bytes.insert(bytes.end(), buffer, buffer + got);
        }
        return bytes;
    }

    int master = -1;
    std::string path;  // empty when the system has none to give
};

}  // namespace numalink
