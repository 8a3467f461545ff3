#include "platform/serial_opening.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>

namespace numalink {

namespace {

LineFault faultOf(int cause) {
    switch (cause) {
        case ENOENT:
        case ENXIO:
        case ENODEV:
        case ENOTDIR:
        case EIO:
            return LineFault::missing;
        case EBUSY:
            return LineFault::busy;
        case EACCES:
        case EPERM:
            return LineFault::denied;
        case ENOTTY:
        case EISDIR:
        case EINVAL:
            return LineFault::notSerial;
        default:
            return LineFault::failed;
    }
}

// The group whose members may use the device, if it is one that people are added to.
std::string groupOf(const std::string &path) {
    constexpr mode_t readAndWrite = S_IRGRP | S_IWGRP;
    struct stat facts {};
    if (stat(path.c_str(), &facts) != 0) return {};
    if (facts.st_gid == 0 || (facts.st_mode & readAndWrite) != readAndWrite) return {};
    group record{};
    group *found = nullptr;
    char texts[4096];
    if (getgrgid_r(facts.st_gid, &record, texts, sizeof texts, &found) != 0 || found == nullptr) return {};
    return record.gr_name;
}

// Exclusive twice over: TIOCEXCL keeps out programs that know nothing of locks, the lock also those of root.
LineFault takeExclusively(int descriptor) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) return LineFault::busy;
    return ioctl(descriptor, TIOCEXCL) == 0 ? LineFault::none : faultOf(errno);
}

}  // namespace

bool applySerialSettings(asio::serial_port &device, unsigned baud) {
    bool taken = true;
    const auto set = [&](auto option) {
        asio::error_code fault;
        device.set_option(option, fault);
        taken = taken && !fault;
    };
    using Port = asio::serial_port_base;
    set(Port::baud_rate(baud));
    set(Port::character_size(8));
    set(Port::parity(Port::parity::none));
    set(Port::stop_bits(Port::stop_bits::two));
    set(Port::flow_control(Port::flow_control::none));
    return taken;
}

// Asio would alter the settings of a device that somebody else is using before we could lock it.
int openSerialDevice(LineOpening &opening) {
    const int device = ::open(opening.path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    opening.fault = device < 0 ? faultOf(errno) : isatty(device) == 0 ? LineFault::notSerial : takeExclusively(device);
    if (opening.fault == LineFault::denied) opening.group = groupOf(opening.path);
    if (opening.fault != LineFault::none) {
        if (device >= 0) ::close(device);
        return -1;
    }
    termios state{};
    if (tcgetattr(device, &state) == 0) {
        cfmakeraw(&state);
        state.c_iflag |= IGNPAR;
        state.c_cflag |= CREAD | CLOCAL;
        static_cast<void>(tcsetattr(device, TCSANOW, &state));  // applySerialSettings tells what a device refuses
    }
    return device;
}

}  // namespace numalink
