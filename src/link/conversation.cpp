#include "link/conversation.h"

#include <algorithm>
#include <atomic>

#include "link/control_bytes.h"
#include "platform/serial_line.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr std::uint64_t waitPerByte = 10;  // all times in milliseconds
constexpr std::uint64_t briefWait = 500;
constexpr std::uint64_t lastingWait = 10000;
constexpr std::uint64_t restAfterFailure = 50;  // of silence: then what the other was saying is over
constexpr std::uint64_t slowPause = 1;          // all the pacing there is: these calculators say nothing of their pace
constexpr std::uint64_t microsecondsPerMillisecond = 1000;
constexpr std::uint64_t progressLimit = 65535;
constexpr std::uint64_t progressSteps = 256;  // each waits for the window, and a line at full speed is faster

std::atomic<bool> stopWanted = false;
bool lineGone = false;
std::uint64_t progressTotal = 0;
std::uint64_t progressShown = 0;

ReadLimits limitsOf(Wait wait, std::size_t count) {
    const std::uint64_t constant = wait == Wait::brief ? briefWait : lastingWait;
    return {.total = waitPerByte * count + constant, .quiet = wait == Wait::brief ? 0 : lastingWait};
}

std::uint64_t elapsedSince(std::uint64_t start) {
    return (serialLine.microseconds() - start) / microsecondsPerMillisecond;
}

// Reads within limits that began at start; a wake that isn't a stop only makes it look again.
std::size_t readWithin(std::span<std::uint8_t> target, ReadLimits limits, std::uint64_t start) {
    std::size_t count = 0;
    while (!conversationOver() && count < target.size()) {
        const std::uint64_t passed = elapsedSince(start);
        if (passed > limits.total) break;
        // At the very limit a millisecond: 0 would be none.
        const ReadLimits left{.total = limits.total - passed + (passed == limits.total ? 1 : 0), .quiet = limits.quiet};
        const LineRead read = serialLine.read(target.subspan(count), left);
        count += read.count;
        if (read.end == ReadEnd::gone) conversationLineGone();
        if (read.end == ReadEnd::timeOut) break;
    }
    return count;
}

// The pause stands ahead of each byte, the first one too: the calculator may just have said something.
void sendPaused(ByteView bytes, void (*afterByte)(std::uint64_t position)) {
    std::uint64_t position = 0;
    for (const std::uint8_t byte : bytes) {
        pauseMilliseconds(slowPause);
        send(byte);
        if (conversationOver()) return;
        if (afterByte != nullptr) afterByte(++position);
    }
}

bool isAttention(std::uint8_t byte) { return byte == control::attention || byte == control::cfxAttention; }

}  // namespace

void conversationReset() { stopWanted = false; }
void conversationLineOpened() { lineGone = false; }
void conversationStop() { stopWanted = true; }
void conversationLineGone() { lineGone = true; }
bool conversationStopped() { return stopWanted; }
bool conversationOver() { return stopWanted || lineGone; }

std::size_t readBytes(std::span<std::uint8_t> target, Wait wait) {
    std::ranges::fill(target, std::uint8_t{0});
    return readWithin(target, limitsOf(wait, target.size()), serialLine.microseconds());
}

std::optional<std::uint8_t> readByte(Wait wait) {
    std::uint8_t byte = 0;
    return readBytes({&byte, 1}, wait) == 1 ? std::optional(byte) : std::nullopt;
}

std::size_t readHead(std::span<std::uint8_t> target, Wait wait) {
    std::ranges::fill(target, std::uint8_t{0});
    const std::uint64_t start = serialLine.microseconds();
    const ReadLimits limits = limitsOf(wait, target.size());
    std::size_t count = 0;
    bool goesOn = true;
    while (goesOn && count < target.size()) {
        const std::size_t came = readWithin(target.subspan(count), limits, start);
        goesOn = count + came == target.size();
        const auto end = target.begin() + static_cast<std::ptrdiff_t>(count + came);
        // A calculator repeats its attention byte until it is answered: those ahead of the head aren't part of it.
        const auto head = count > 0 ? target.begin() : std::find_if_not(target.begin(), end, isAttention);
        std::copy(head, end, target.begin());
        count = static_cast<std::size_t>(end - head);
        std::ranges::fill(target.subspan(count), std::uint8_t{0});
    }
    return count;
}

bool readGoodHead(std::span<std::uint8_t> target) {
    return readHead(target, Wait::lasting) == target.size() && frameIsGood(target);
}

bool readGoodData(std::span<std::uint8_t> target) {
    constexpr std::size_t part = 256;  // bytes between two looks at the progress
    const std::uint64_t start = serialLine.microseconds();
    const ReadLimits limits = limitsOf(Wait::lasting, target.size());
    progressStart(target.size());
    for (std::size_t count = 0; count < target.size();) {
        const std::size_t asked = std::min(part, target.size() - count);
        if (readWithin(target.subspan(count, asked), limits, start) < asked) return false;
        count += asked;
        progressAt(count);
    }
    return frameIsGood(target);
}

void send(ByteView bytes) {
    if (!conversationOver() && !serialLine.write(bytes) && !stopWanted) conversationLineGone();
}

void send(std::uint8_t byte) { send(ByteView{&byte, 1}); }

void sendSlowly(ByteView bytes) { sendPaused(bytes, nullptr); }

void sendSlowlyWithProgress(ByteView bytes) {
    progressStart(bytes.size());
    sendPaused(bytes, progressAt);
}

void pauseMilliseconds(std::uint64_t milliseconds) {
    if (!conversationOver())
        serialLine.sleepUntil(serialLine.microseconds() + milliseconds * microsecondsPerMillisecond);
}

void dropInput() {
    std::uint8_t dropped[256];
    while (!conversationOver()) {
        const LineRead read = serialLine.read(std::span(dropped), ReadLimits{.total = 0, .quiet = restAfterFailure});
        if (read.end == ReadEnd::gone) conversationLineGone();
        if (read.end == ReadEnd::timeOut) return;
    }
}

bool failBox(Text body, const std::vector<std::string> &arguments, BoxIcon icon) {
    if (!conversationOver()) tellUser(body, arguments, icon);
    dropInput();
    return false;
}

bool failChecksum() {
    send(control::checksumError);
    if (!conversationOver()) tellFixed(Text::none, "Checksum error", "Receiving file");
    dropInput();
    return false;
}

bool failUnconfirmed(std::optional<std::uint8_t> answer) {
    return failBox(Text::algebraNotConfirmed, {std::to_string(answer.value_or(0))}, BoxIcon::none);
}

void progressStart(std::uint64_t total) {
    progressTotal = total;
    progressShown = 0;
    if (!conversationOver()) userInterface.progressRange(static_cast<int>(std::min(total, progressLimit)));
}

void progressAt(std::uint64_t position) {
    const bool due = position >= progressTotal || position < progressShown ||
                     position - progressShown >= std::max<std::uint64_t>(1, progressTotal / progressSteps);
    if (!due || conversationOver()) return;
    progressShown = position;
    const std::uint64_t scaled = progressTotal <= progressLimit ? position : position * progressLimit / progressTotal;
    userInterface.progressPosition(static_cast<int>(std::min(scaled, progressLimit)));
}

void linkStatus(Text text, const std::vector<std::string> &arguments, const std::string &behind) {
    if (!conversationOver()) userInterface.statusText(StatusPart::link, text, wording(text, arguments) + behind);
}

}  // namespace numalink
