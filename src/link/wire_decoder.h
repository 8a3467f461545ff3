// What goes over the wire, told in words: control bytes by their names, frames with what they announce or carry and
// whether their checksum is right. Keeps nothing but the frames under way; its owner guards it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/bytes.h"

namespace numalink {

enum class WireWay { sent = 0, received = 1 };  // by us, from the calculator

struct WireEvent {
    WireWay way = WireWay::sent;
    std::uint64_t microseconds = 0;  // of its first byte
    Bytes bytes;
    std::string meaning;  // UTF-8, one line
};

class WireDecoder {
public:
    // Bytes as they pass, in parts of any size. Gives what is complete with them; a frame that the other side
    // interrupts counts as cut.
    std::vector<WireEvent> pass(WireWay way, std::uint64_t microseconds, ByteView bytes);
    std::vector<WireEvent> end();  // the line is closed: what has begun is cut

private:
    struct Side {
        Bytes frame;                   // what has come of the frame under way
        std::uint64_t begun = 0;       // microseconds
        std::uint64_t dataFrames = 0;  // that the last head announced
        std::uint64_t dataFrameSize = 0;
        std::uint64_t dataFrame = 0;  // of them, how many have passed
    };

    void passByte(WireWay way, std::uint64_t microseconds, std::uint8_t byte, std::vector<WireEvent> &told);
    void control(WireWay way, std::uint64_t microseconds, std::uint8_t byte, std::vector<WireEvent> &told);
    void cut(WireWay way, std::vector<WireEvent> &told);
    void complete(WireWay way, std::vector<WireEvent> &told);
    static std::uint64_t frameSize(const Side &side);  // 0 while it can't be told
    Side &sideOf(WireWay way) { return sides[static_cast<std::size_t>(way)]; }

    std::array<Side, 2> sides;
    bool existsAsked = false;  // 21 was the last control byte: 15 answers it
};

}  // namespace numalink
