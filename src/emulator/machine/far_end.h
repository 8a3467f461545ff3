// What a program's Send( and Receive( speak to: another device on the port that the settings name, in the manner of a
// calculator. Frames are those of calculator/frames. A stop ends every wait within 10 ms. Run thread, but for the
// interruption.
#pragma once

#include "platform/bytes.h"

namespace numalink {

inline constexpr unsigned slowBaud = 9600, fastBaud = 38400;

// False without a port in the settings, or when it can't be opened.
bool farEndOpen(unsigned baud);
bool farEndIsOpen();
void farEndClose();      // harmless when it isn't open
void farEndInterrupt();  // any thread, behind a stop: ends a write on a line that takes nothing

// Says that it wants to send, then head, data in frames of so many bytes, and the closing frame. False when what should
// be answered isn't.
bool farEndSend(ByteView head, ByteView data, std::size_t frameSize);

// Asks for an item by a request of 50 bytes, or takes what a far end offers that knows no requests: its head, and then
// its data in frames of the size that dataSize gives for the head, 0 refusing it. False when nothing comes whole.
struct DataSize {
    std::size_t frame = 0, frames = 0;
};
bool farEndReceive(ByteView request, DataSize (*dataSize)(ByteView head), Bytes &head, Bytes &data);

}  // namespace numalink
