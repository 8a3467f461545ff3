#include "link/wire_trace.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <deque>
#include <memory>
#include <string_view>

#include "link/wire_decoder.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/lock.h"
#include "platform/serial_line.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr std::string_view firstLine = "Numalink wire trace\n";
constexpr std::size_t keptLines = 400, bytesInRow = 16;
constexpr const char *wayMarks[] = {">", "<"};

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};

struct WireTrace {
    std::unique_ptr<std::FILE, CloseFile> file;
    WireDecoder decoder;
    std::deque<std::string> last;
    std::uint64_t begun = 0;  // on the line's clock
    bool whole = true;
};
Lock traceLock;
WireTrace trace GUARDED_BY(traceLock);
SerialLine observed;  // what serialLine was; written with no other thread at work

std::string secondsOf(std::uint64_t microseconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%10.3f", static_cast<double>(microseconds) / 1e6);
    return text.data();
}

std::string rowsOf(ByteView bytes) {
    std::string rows;
    for (std::size_t at = 0; at < bytes.size(); at += bytesInRow) {
        rows += "              ";
        for (const std::uint8_t byte : bytes.subspan(at, std::min(bytesInRow, bytes.size() - at))) {
            std::array<char, 4> text{};
            std::snprintf(text.data(), text.size(), " %02X", byte);
            rows += text.data();
        }
        rows += "\n";
    }
    return rows;
}

void put(const std::string &line, ByteView bytes = {}) REQUIRES_LOCK(traceLock) {
    if (trace.file == nullptr) return;
    trace.last.push_back(line);
    if (trace.last.size() > keptLines) trace.last.pop_front();
    const std::string text = line + "\n" + rowsOf(bytes);
    const bool written = std::fwrite(text.data(), 1, text.size(), trace.file.get()) == text.size();
    // A trace of what ends the program must be whole.
    trace.whole = std::fflush(trace.file.get()) == 0 && written && trace.whole;
}

std::string since(std::uint64_t microseconds) REQUIRES_LOCK(traceLock) {
    return secondsOf(microseconds - std::min(microseconds, trace.begun));
}

void putEvents(const std::vector<WireEvent> &events) REQUIRES_LOCK(traceLock) {
    for (const WireEvent &event : events) {
        const std::string head = since(event.microseconds) + " " + wayMarks[static_cast<std::size_t>(event.way)] + " ";
        if (event.bytes.size() > 1) {
            put(head + event.meaning, event.bytes);
            continue;
        }
        std::array<char, 4> byte{};
        std::snprintf(byte.data(), byte.size(), "%02X ", event.bytes.front());
        put(head + byte.data() + event.meaning);
    }
}

void pass(WireWay way, ByteView bytes) {
    const std::uint64_t now = observed.microseconds();
    const HoldLock hold(traceLock);
    putEvents(trace.decoder.pass(way, now, bytes));
}

void tell(const std::string &what) {
    const std::uint64_t now = observed.microseconds();
    const HoldLock hold(traceLock);
    putEvents(trace.decoder.end());
    put(since(now) + " - " + what);
}

LineOpening openObserved(const std::string &name, unsigned baud) {
    static LineFault before = LineFault::none;  // the link's thread: a missing port is tried twice a second
    LineOpening opening = observed.open(name, baud);
    if (opening.fault == LineFault::none)
        tell(opening.path + " opened, " + std::to_string(baud) + " baud, 8 data bits, no parity, 2 stop bits");
    else if (opening.fault != before)
        tell(opening.path + " not opened");
    before = opening.fault;
    return opening;
}

LineRead readObserved(std::span<std::uint8_t> target, ReadLimits limits) {
    const LineRead read = observed.read(target, limits);
    if (read.count > 0) pass(WireWay::received, target.first(read.count));
    if (read.end == ReadEnd::gone) tell("the line is gone");
    return read;
}

// Ahead of the write: the answer may be heard before it returns.
bool writeObserved(ByteView bytes) {
    pass(WireWay::sent, bytes);
    return observed.write(bytes);
}

void closeObserved() {
    observed.close();
    const HoldLock hold(traceLock);
    putEvents(trace.decoder.end());
}

Text whyNot(const std::string &path) {
    Bytes held;
    const FileResult result = readWholeFile(path, held, std::uint64_t{1} << 30);
    if (result == FileResult::missing) return Text::none;
    if (result != FileResult::done) return fileTrouble(result);
    const auto mark = ByteView(held).first(std::min(held.size(), firstLine.size()));
    const bool isTrace = held.empty() || std::ranges::equal(mark, firstLine, {},
                                                            [](std::uint8_t byte) { return static_cast<char>(byte); });
    return isTrace ? Text::none : Text::traceOtherFile;
}

}  // namespace

Text wireTraceStart(const std::string &path) {
    if (const Text cause = whyNot(path); cause != Text::none) return cause;
    std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "ae"));
    if (file == nullptr) return errno == ENOENT ? Text::fileMissing : Text::fileDenied;
    observed = serialLine;
    {
        const HoldLock hold(traceLock);
        trace.file = std::move(file);
        trace.decoder = {};
        trace.last.clear();
        trace.whole = true;
        trace.begun = observed.microseconds();
        std::fwrite(firstLine.data(), 1, firstLine.size(), trace.file.get());
        put(since(trace.begun) + " - begun " + clockPort.localDate() + " " + clockPort.localTime() +
            "; seconds, > sent or < received, what it means, bytes in hexadecimal");
    }
    serialLine.open = openObserved;
    serialLine.read = readObserved;
    serialLine.close = closeObserved;
    serialLine.write = writeObserved;
    return Text::none;
}

bool wireTraceEnd() {
    const HoldLock hold(traceLock);
    if (trace.file == nullptr) return true;
    putEvents(trace.decoder.end());
    trace.file = nullptr;
    serialLine = observed;
    return trace.whole;
}

std::vector<std::string> wireTraceLast() {
    const HoldLock hold(traceLock);
    return {trace.last.begin(), trace.last.end()};
}

}  // namespace numalink
