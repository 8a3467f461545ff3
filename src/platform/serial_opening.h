// How a serial device is opened and set, for a line and for the watch over several. Any thread.
#pragma once

#include <asio/serial_port.hpp>

#include "platform/serial_line.h"

namespace numalink {

// Opens the device of opening.path exclusively, its bytes as they come. The descriptor, which never waits; -1 with the
// fault in opening.
int openSerialDevice(LineOpening &opening);

// Speed, 8 data bits, no parity, 2 stop bits. False when the device refuses any of it.
bool applySerialSettings(asio::serial_port &device, unsigned baud);

}  // namespace numalink
