// A page has no lines: whatever is opened isn't there.
#include "platform/serial_line.h"

namespace numalink {

const SerialLine systemSerialLine = {
    .open =
        [](const std::string &, unsigned) {
            return LineOpening{LineFault::missing, {}, {}, true};
        },
    .read = [](std::span<std::uint8_t>, ReadLimits) { return LineRead{.end = ReadEnd::gone}; },
    .close = [] {},
    .write = [](ByteView) { return false; },
    .wake = [] {},
    .interrupt = [] {},
    .microseconds = [] { return std::uint64_t{0}; },
    .sleepUntil = [](std::uint64_t) {},
};
SerialLine farEndLine = systemSerialLine;

}  // namespace numalink
