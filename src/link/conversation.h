// What both directions and both families are made of: reads with the families' time-outs, sends, the line's rest
// after a failure, progress, and the few messages they share. The link's thread alone calls this, but for the stop.
// Once the conversation is over (a stop, or the line is gone), reads bring nothing, and nothing is sent or shown.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "calculator/frames.h"
#include "telling/tell_user.h"

namespace numalink {

// 10 ms a byte and half a second; or 10 ms a byte and 10 seconds, and never 10 seconds without a byte. The ALGEBRA
// family waits long throughout.
enum class Wait { brief, lasting };

void conversationReset();       // ahead of starting the thread: no stop is wanted
void conversationLineOpened();  // the line is there (again)
void conversationStop();        // any thread: the conversation is over
void conversationLineGone();
bool conversationOver();
bool conversationStopped();

// How many bytes came; what didn't come stays 0.
std::size_t readBytes(std::span<std::uint8_t> target, Wait wait);
std::optional<std::uint8_t> readByte(Wait wait);
// The same, passing over attention bytes that a calculator has repeated ahead of its head.
std::size_t readHead(std::span<std::uint8_t> target, Wait wait);
// Whether a frame came whole with a good checksum, waited for long. The data move the progress bar.
bool readGoodHead(std::span<std::uint8_t> target);
bool readGoodData(std::span<std::uint8_t> target);

void send(std::uint8_t byte);
void send(ByteView bytes);
void sendSlowly(ByteView bytes);              // a pause of 1 ms ahead of each byte, never a shorter one
void sendSlowlyWithProgress(ByteView bytes);  // the same, and the bar moves
void pauseMilliseconds(std::uint64_t milliseconds);

// Drops what arrives until nothing has for 50 ms.
void dropInput();

// A box, and then the line's rest. False always, so that a failing step ends in one line.
bool failBox(Text body, const std::vector<std::string> &arguments = {}, BoxIcon icon = BoxIcon::warning);
bool failChecksum();                                       // sends the error byte, shows the checksum box
bool failUnconfirmed(std::optional<std::uint8_t> answer);  // a box with the byte, 0 for a time-out

// The bar for so many bytes, scaled to 16 bits and drawn in at most 256 steps.
void progressStart(std::uint64_t total);
void progressAt(std::uint64_t position);

// A line in the link's field of the status bar; a name may stand behind the text.
void linkStatus(Text text, const std::vector<std::string> &arguments = {}, const std::string &behind = {});

}  // namespace numalink
