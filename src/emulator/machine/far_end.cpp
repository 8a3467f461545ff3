#include "emulator/machine/far_end.h"

#include <algorithm>
#include <atomic>
#include <optional>

#include "calculator/frames.h"
#include "emulator/machine/run_waits.h"
#include "platform/serial_line.h"
#include "settings/settings_store.h"

namespace numalink {

namespace {

namespace control {
constexpr std::uint8_t callOfCalculator = 0x15, call = 0x16;  // I want to send
constexpr std::uint8_t ready = 0x13, good = 0x06, isThere = 0x21, refused = 0x24, bad = 0x2B;
}  // namespace control

// Milliseconds.
constexpr std::uint64_t callWait = 500, answerWait = 1000, waitPerByte = 10;
constexpr std::uint64_t stopLook = 10;
constexpr std::size_t chunk = 16;  // bytes written between two looks at a stop

std::atomic<bool> isOpen = false;

bool isCall(std::uint8_t byte) { return byte == control::callOfCalculator || byte == control::call; }

// False when they haven't all come within the time, or a stop came.
bool readAll(std::span<std::uint8_t> target, std::uint64_t milliseconds) {
    const std::uint64_t end = farEndLine.microseconds() + milliseconds * 1000;
    while (!target.empty() && runGoesOn() && farEndLine.microseconds() < end) {
        const LineRead read = farEndLine.read(target, {.total = stopLook});
        target = target.subspan(read.count);
        if (read.end == ReadEnd::gone) return false;
    }
    return target.empty();
}

std::optional<std::uint8_t> readByte(std::uint64_t milliseconds) {
    std::uint8_t byte = 0;
    return readAll({&byte, 1}, milliseconds) ? std::optional(byte) : std::nullopt;
}

bool write(ByteView bytes) {
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), chunk);
        if (!runGoesOn() || !farEndLine.write(bytes.first(count))) return false;
        bytes = bytes.subspan(count);
    }
    return true;
}
bool write(std::uint8_t byte) { return write(ByteView(&byte, 1)); }

// What comes to either of our calls. Not every far end knows a calculator's own.
std::optional<std::uint8_t> answerToCall() {
    for (const std::uint8_t own : {control::callOfCalculator, control::call}) {
        if (!write(own)) return std::nullopt;
        if (const auto answer = readByte(own == control::call ? answerWait : callWait)) return answer;
    }
    return std::nullopt;
}

// One part has gone; a far end that has such an item already is told to go on.
bool isTaken() {
    const auto answer = readByte(answerWait);
    if (answer != control::isThere) return answer == control::good;
    return write(control::good) && readByte(answerWait) == control::good;
}

bool takeCall(std::optional<std::uint8_t> first) { return first && isCall(*first) && write(control::ready); }

// Calls that are repeated ahead of the head are passed over.
bool readHead(Bytes &head) {
    head.assign(headFrameSize, 0);
    do {
        if (!readAll(std::span(head).first(1), answerWait)) return false;
    } while (isCall(head[0]));
    return readAll(std::span(head).subspan(1), answerWait + waitPerByte * headFrameSize);
}

bool readFrame(std::span<std::uint8_t> frame) {
    if (!readAll(frame, answerWait + waitPerByte * frame.size())) return false;
    const bool isGood = frameIsGood(frame);
    return write(isGood ? control::good : control::bad) && isGood;
}

}  // namespace

bool farEndOpen(unsigned baud) {
    const std::string port = settingsValue(setting::farEndPort);
    isOpen = !port.empty() && runGoesOn() && farEndLine.open(port, baud).fault == LineFault::none;
    return isOpen;
}

bool farEndIsOpen() { return isOpen; }

void farEndClose() {
    if (isOpen.exchange(false)) farEndLine.close();
}

void farEndInterrupt() {
    if (isOpen) farEndLine.interrupt();
}

bool farEndSend(ByteView head, ByteView data, std::size_t frameSize) {
    if (answerToCall() != control::ready || !write(head) || !isTaken()) return false;
    for (std::size_t at = 0; at < data.size(); at += frameSize) {
        if (!write(data.subspan(at, frameSize)) || !isTaken()) return false;
    }
    if (!write(*buildHeadFrame(kind::endOfTransmission, Family::cfx, {}))) return false;
    readByte(stopLook);  // the time that it takes to leave: closing would drop it
    return true;
}

bool farEndReceive(ByteView request, DataSize (*dataSize)(ByteView head), Bytes &head, Bytes &data) {
    auto answer = answerToCall();
    if (answer == control::ready) {
        if (!write(request) || !isTaken()) return false;
        answer = readByte(answerWait);
    }
    if (!takeCall(answer) || !readHead(head)) return false;
    const DataSize size = frameIsGood(head) ? dataSize(head) : DataSize{};
    if (size.frames == 0) return write(control::refused) && false;
    data.assign(size.frame * size.frames, 0);
    if (!write(control::good)) return false;
    for (std::size_t at = 0; at < data.size(); at += size.frame) {
        if (!readFrame(std::span(data).subspan(at, size.frame))) return false;
    }
    Bytes closing(headFrameSize);
    readAll(closing, answerWait);  // or another item, which isn't answered
    return true;
}

}  // namespace numalink
