#include "link/scripted_line.h"

#include <algorithm>

#include "link/link_scene.h"

namespace numalink {

namespace {

constexpr std::uint64_t readLimit = 400000;  // reads of one conversation, far beyond any that ends

ScriptedLine *scripted = nullptr;
std::deque<std::uint8_t> incoming;
std::uint64_t lineClock = 1000000;  // microseconds
std::uint64_t reads = 0;
std::uint64_t pendingDelay = 0;  // milliseconds of the byte that is late

// Waits shorter than any answer's time are no silence that the other side gives up at.
LineRead timeOut(std::size_t count, std::uint64_t end, std::uint64_t limit) {
    constexpr std::uint64_t shortestAnswerTime = 500;
    lineClock = std::max(lineClock, end);
    if (limit >= shortestAnswerTime) scripted->silence();
    return {count, ReadEnd::timeOut};
}

LineRead readScripted(std::span<std::uint8_t> target, ReadLimits limits) {
    if (++reads > readLimit) return {0, ReadEnd::gone};
    std::uint64_t limit = limits.total == 0 ? limits.quiet : limits.total;
    if (limits.quiet != 0) limit = std::min(limit, limits.quiet);
    std::uint64_t end = lineClock + limit * 1000;
    std::size_t count = 0;
    while (count < target.size()) {
        if (incoming.empty()) {
            scripted->speak(incoming);
            if (!incoming.empty()) pendingDelay = scripted->delay();
        }
        if (incoming.empty()) {
            if (!transmitConversationRuns() && scripted->isOver()) return {count, ReadEnd::gone};
            return timeOut(count, end, limit);
        }
        if (lineClock + pendingDelay * 1000 > end) {
            pendingDelay -= std::min(pendingDelay, (end - lineClock) / 1000 + 1);
            return timeOut(count, end, limit);
        }
        lineClock += pendingDelay * 1000 + 1000;
        target[count++] = incoming.front();
        incoming.pop_front();
        pendingDelay = incoming.empty() ? 0 : scripted->delay();
        if (limits.quiet != 0) end = lineClock + limit * 1000;
    }
    return {count, ReadEnd::complete};
}

}  // namespace

void scriptedLineInstall(ScriptedLine &line) {
    scripted = &line;
    incoming.clear();
    reads = 0;
    pendingDelay = 0;
    lineClock += 60000000;
    serialLine = systemSerialLine;
    serialLine.read = readScripted;
    serialLine.write = [](ByteView bytes) {
        for (const std::uint8_t byte : bytes) scripted->hear(byte);
        return true;
    };
    serialLine.wake = [] {};
    serialLine.microseconds = [] { return lineClock; };
    serialLine.sleepUntil = [](std::uint64_t end) { lineClock = std::max(lineClock, end); };
    clockPort.tickCount = [] { return lineClock / 1000; };
}

std::uint64_t scriptedLineReads() { return reads; }

}  // namespace numalink
