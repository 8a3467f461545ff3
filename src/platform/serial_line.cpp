// The real line: Asio opens, sets and reads the device; what has to reach past Asio (locks, writes from other
// threads) speaks to its descriptor.
#include "platform/serial_line.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/serial_port.hpp>
#include <asio/steady_timer.hpp>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <utility>

#include "platform/lock.h"
#include "platform/serial_opening.h"

namespace numalink {

namespace {

constexpr unsigned bitsPerByte = 11;       // start, 8 data, 2 stop
constexpr int outputAhead = 256;           // bytes that may wait in the system before more are written
constexpr int outputPollMilliseconds = 5;  // how often a full output is looked at, and an interrupt seen

// The device and its timer are the thread's that opens it.
struct Line {
    asio::io_context context{1};
    asio::serial_port device{context};
    asio::steady_timer timer{context};
    Lock writeLock;  // one write at a time, and none on a descriptor that is being closed
    int descriptor GUARDED_BY(writeLock) = -1;
    std::atomic<bool> woken = false;
    std::atomic<bool> interrupted = false;
    std::atomic<unsigned> baud = 9600;
    std::atomic<std::uint64_t> freeAt =
        0;  // microseconds: when all that was written has left the line, as far as known
};

template <int number>
Line &lineOfNumber() {
    static Line instance;
    return instance;
}

std::uint64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * 1000000 + static_cast<std::uint64_t>(time.tv_nsec) / 1000;
}

void sleepTo(std::uint64_t deadline) {
    const timespec time{.tv_sec = static_cast<time_t>(deadline / 1000000),
                        .tv_nsec = static_cast<long>(deadline % 1000000 * 1000)};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &time, nullptr) == EINTR) {
    }
}

void closeLine(Line &own) {
    const HoldLock hold(own.writeLock);
    const int descriptor = std::exchange(own.descriptor, -1);
    if (descriptor < 0) return;
    tcflush(descriptor, TCOFLUSH);  // else closing waits until a stuck line has taken it all
    ioctl(descriptor, TIOCNXCL);
    asio::error_code ignored;
    own.device.close(ignored);
}

LineOpening openLine(Line &own, const std::string &name, unsigned baud) {
    closeLine(own);
    LineOpening opening{.path = serialDevicePath(name), .group = {}};
    const int probe = openSerialDevice(opening);
    if (probe < 0) return opening;
    asio::error_code fault;
    own.device.assign(probe, fault);
    if (fault) {
        ::close(probe);
        opening.fault = LineFault::failed;
        return opening;
    }
    opening.settingsTaken = applySerialSettings(own.device, baud);
    tcflush(probe, TCIFLUSH);
    own.woken = false;
    own.interrupted = false;
    own.baud = baud;
    own.freeAt = 0;
    const HoldLock hold(own.writeLock);
    own.descriptor = probe;
    return opening;
}

std::chrono::steady_clock::time_point timePoint(std::uint64_t microseconds) {
    return std::chrono::steady_clock::time_point(std::chrono::microseconds(microseconds));
}

// One wait for bytes up to the deadline (0: none). Count 0 and complete: woken by nobody, look again.
LineRead readSome(Line &own, std::span<std::uint8_t> target, std::uint64_t deadline) {
    LineRead result;
    bool readDone = false;
    bool timerDone = deadline == 0;
    bool late = false;
    asio::error_code fault;
    own.context.restart();
    own.device.async_read_some(asio::buffer(target.data(), target.size()),
                               [&](const asio::error_code &code, std::size_t count) {
                                   fault = code;
                                   result.count = count;
                                   readDone = true;
                                   own.timer.cancel();
                               });
    if (deadline != 0) {
        own.timer.expires_at(timePoint(deadline));
        own.timer.async_wait([&](const asio::error_code &code) {
            timerDone = true;
            late = !code;
            asio::error_code ignored;
            if (!readDone) own.device.cancel(ignored);
        });
    }
    while (!readDone || !timerDone) own.context.run_one();
    if (result.count > 0) return result;
    if (fault && fault != asio::error::operation_aborted) result.end = ReadEnd::gone;
    if (fault == asio::error::operation_aborted && late) result.end = ReadEnd::timeOut;
    return result;
}

LineRead readLine(Line &own, std::span<std::uint8_t> target, ReadLimits limits) {
    LineRead read;
    const std::uint64_t start = std::max(now(), own.freeAt.load());
    std::uint64_t lastByte = start;
    while (read.count < target.size()) {
        if (own.interrupted || own.woken.exchange(false)) return {read.count, ReadEnd::woken};
        if (!own.device.is_open()) return {read.count, ReadEnd::gone};
        std::uint64_t deadline = limits.total == 0 ? 0 : start + limits.total * 1000;
        const std::uint64_t quietEnd = lastByte + limits.quiet * 1000;
        if (limits.quiet != 0 && (deadline == 0 || quietEnd < deadline)) deadline = quietEnd;
        const LineRead some = readSome(own, target.subspan(read.count), deadline);
        read.count += some.count;
        if (some.count > 0) {
            // Who answers has heard us: a line that is faster than its speed has no output left to wait for.
            lastByte = now();
            own.freeAt = std::min(own.freeAt.load(), lastByte);
        }
        if (some.end != ReadEnd::complete) return {read.count, some.end};
    }
    return read;
}

// Waits until little enough is waiting in the system, so that a stop and the progress shown are honest.
bool waitForRoom(const Line &own, int descriptor) {
    for (;;) {
        if (own.interrupted) return false;
        int waiting = 0;
        pollfd entry{.fd = descriptor, .events = POLLOUT, .revents = 0};
        const int ready = poll(&entry, 1, outputPollMilliseconds);
        if (ready > 0 && (entry.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0) return false;
        if (ready <= 0) continue;
        if (ioctl(descriptor, TIOCOUTQ, &waiting) != 0 || waiting < outputAhead) return true;
        sleepTo(now() + std::uint64_t{outputPollMilliseconds} * 1000);
    }
}

bool writeLine(Line &own, ByteView bytes) {
    const HoldLock hold(own.writeLock);
    const int descriptor = own.descriptor;
    if (descriptor < 0) return false;
    const std::uint64_t lineTime = bytes.size() * bitsPerByte * 1000000 / own.baud;
    own.freeAt = std::max(now(), own.freeAt.load()) + lineTime;
    while (!bytes.empty()) {
        if (!waitForRoom(own, descriptor)) return false;
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EAGAIN && errno != EINTR) return false;
        if (count > 0) bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

// The read sees the mark itself; the posted work gets it out of its wait.
void endWait(Line &own, std::atomic<bool> &mark) {
    mark = true;
    asio::post(own.context, [&own] {
        asio::error_code ignored;
        own.device.cancel(ignored);
    });
}

template <int number>
constexpr SerialLine tableOfLine() {
    constexpr auto line = lineOfNumber<number>;
    return {
        .open = [](const std::string &name, unsigned baud) { return openLine(line(), name, baud); },
        .read = [](std::span<std::uint8_t> target, ReadLimits limits) { return readLine(line(), target, limits); },
        .close = [] { closeLine(line()); },
        .write = [](ByteView bytes) { return writeLine(line(), bytes); },
        .wake = [] { endWait(line(), line().woken); },
        .interrupt = [] { endWait(line(), line().interrupted); },
        .microseconds = now,
        .sleepUntil = sleepTo,
    };
}

}  // namespace

const SerialLine systemSerialLine = tableOfLine<0>();
SerialLine serialLine = systemSerialLine;
SerialLine farEndLine = tableOfLine<1>();

}  // namespace numalink
