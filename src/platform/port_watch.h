// Several serial devices that are listened to at once, until it is known at which of them somebody speaks. One watch;
// one thread at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/serial_line.h"

namespace numalink {

// Opens those of the paths that aren't open yet (8 data bits, no parity, 2 stop bits) and closes what isn't among them
// any more. How many are open, and why the first of the others isn't; its path is empty where all are.
struct PortWatch {
    std::size_t open = 0;
    LineOpening refused = {};
};
PortWatch watchPorts(const std::vector<std::string> &paths, unsigned baud);

// The first byte that any of them brings within the time; a device that has gone is closed.
struct WatchedByte {
    std::string path;
    std::uint8_t byte = 0;
};
std::optional<WatchedByte> hearWatchedPorts(int milliseconds);

void sayToWatchedPorts(std::uint8_t byte);  // to each that takes it at once
// A line can open one of them from now on; they stay open until the watch is stopped, so that whoever is at the other
// end sees no interruption.
void releaseWatchedPorts();
void stopWatchingPorts();  // closes them all

}  // namespace numalink
