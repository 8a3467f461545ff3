// Serial lines: opened exclusively, read with time-outs, written, woken. Two of them, each of one device at a time:
// that of the link to a calculator, and that of an emulated calculator to its far end. A table of functions, with the
// clock that its time-outs and pauses go by, so that a test or a fuzzer puts in a scripted line whose clock jumps.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/bytes.h"

namespace numalink {

enum class LineFault {
    none,
    missing,    // no such device
    busy,       // some other program has it
    denied,     // no permission; group tells who has it, if a group has
    notSerial,  // something else than a serial line
    failed
};

struct LineOpening {
    LineFault fault = LineFault::none;
    std::string path = {};      // the device that the name meant
    std::string group = {};     // for denied: the group that may use the device, or empty
    bool settingsTaken = true;  // false when the open device refused speed or format
};

// Milliseconds; 0 stands for no such limit. quiet runs from the last byte, total from the moment when all that was
// written ahead of the read has left a line of this speed, or from the last byte that an earlier read brought.
struct ReadLimits {
    std::uint64_t total = 0;
    std::uint64_t quiet = 0;
};

enum class ReadEnd { complete, timeOut, woken, gone };

struct LineRead {
    std::size_t count = 0;
    ReadEnd end = ReadEnd::complete;
};

struct SerialLine {
    // One thread alone opens, reads and closes: the link's, or the run's.
    LineOpening (*open)(const std::string &name, unsigned baud);  // 8 data bits, no parity, 2 stop bits
    LineRead (*read)(std::span<std::uint8_t> target, ReadLimits limits);
    void (*close)();  // drops what hasn't left yet
    // Any thread. False when the line is gone, closed or interrupted.
    bool (*write)(ByteView bytes);
    void (*wake)();       // ends the read that is waiting, or else the next one, at once
    void (*interrupt)();  // ends every read and write at once, until the next open
    // The clock, in microseconds, monotonic.
    std::uint64_t (*microseconds)();
    void (*sleepUntil)(std::uint64_t microseconds);
};

extern const SerialLine systemSerialLine;
extern SerialLine serialLine;  // systemSerialLine unless a test has put in its own before any thread started
extern SerialLine farEndLine;  // of a run

// The serial devices that are there: first those with a lasting name (serial/by-id), then the other USB ones, then
// the built-in ports that have hardware behind them. Paths, in the order of their numbers.
std::vector<std::string> serialDevices(const std::string &deviceFolder = "/dev",
                                       const std::string &classFolder = "/sys/class/tty");

// "COM1" to "COM4", in any case, are the first four devices of the system: built-in ports, then USB ones. Any other
// name is a path. A COM port that isn't there gives its name back, which no device has.
std::string serialDevicePath(const std::string &name, const std::string &deviceFolder = "/dev",
                             const std::string &classFolder = "/sys/class/tty");

// Maker and name of the adapter behind the device, as it tells them itself: "FTDI FT232R USB UART"; empty for none that
// tells. At most 64 bytes, without control characters.
std::string serialAdapterName(const std::string &path, const std::string &classFolder = "/sys/class/tty");

}  // namespace numalink
