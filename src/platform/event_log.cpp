// The file holds a first line and a record an event, each of the same size, with the event's number ahead; the newest
// takes the place of the oldest. A write that fails loses that event there, and nothing else.
#include "platform/event_log.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <deque>
#include <utility>

#include "platform/bytes.h"
#include "platform/clock.h"
#include "platform/file_port.h"
#include "platform/lock.h"

namespace numalink {

namespace {

constexpr std::string_view firstLine = "Numalink events 1\n";
constexpr std::size_t recordSize = 144;  // number, blank, time, blank, text, line end
constexpr std::size_t numberSize = 10;

struct EventLog {
    std::deque<std::string> lines;
    std::uint64_t count = 0;  // of all that were noted
    int file = -1;
    std::string path;
};
Lock logLock;
EventLog state GUARDED_BY(logLock);

// Cut ahead of a character of several bytes that doesn't fit.
std::string cleaned(std::string_view text) {
    std::size_t end = std::min(text.size(), eventTextLimit);
    while (end < text.size() && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) end--;
    std::string line(text.substr(0, end));
    std::ranges::replace_if(
        line, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return line;
}

void putRecord(std::uint64_t number, const std::string &line) REQUIRES_LOCK(logLock) {
    if (state.file < 0) return;
    std::string record = std::to_string(number);
    record.insert(0, numberSize - std::min(numberSize, record.size()), '0');
    record += " " + line;
    record.resize(recordSize - 1, ' ');
    record += '\n';
    filePort.writeAt(state.file, firstLine.size() + number % eventLimit * recordSize, record.data(), record.size());
}

// The records of a file, in the order of their numbers; nothing for a file that is none.
std::optional<std::vector<std::string>> recordsOf(std::string_view text) {
    if (!text.starts_with(firstLine)) return std::nullopt;
    std::vector<std::pair<std::uint64_t, std::string>> found;
    for (std::size_t at = firstLine.size(); at + recordSize <= text.size(); at += recordSize) {
        const std::string_view record = text.substr(at, recordSize - 1);
        std::uint64_t number = 0;
        const auto [end, fault] = std::from_chars(record.data(), record.data() + numberSize, number);
        if (fault != std::errc{} || end != record.data() + numberSize) continue;
        const std::string_view line = record.substr(numberSize + 1);
        found.emplace_back(number, line.substr(0, line.find_last_not_of(' ') + 1));
    }
    std::ranges::sort(found);
    std::vector<std::string> lines;
    lines.reserve(found.size());
    for (auto &[number, line] : found) lines.push_back(cleaned(line));
    return lines;
}

}  // namespace

void noteEvent(std::string_view text) {
    const std::string line = clockPort.localTime() + " " + cleaned(text);
    const HoldLock hold(logLock);
    state.lines.push_back(line);
    if (state.lines.size() > eventLimit) state.lines.pop_front();
    putRecord(state.count++, line);
}

std::vector<std::string> eventLines() {
    const HoldLock hold(logLock);
    return {state.lines.begin(), state.lines.end()};
}

void forgetEvents() {
    eventLogRelease();
    const HoldLock hold(logLock);
    state = {};
}

std::optional<std::vector<std::string>> eventLogKeep(const std::string &path) {
    eventLogRelease();
    int file = -1;
    if (filePort.openOwn(path.c_str(), true, file) != OpenResult::opened) return std::nullopt;
    std::string text(firstLine.size() + eventLimit * recordSize, '\0');
    text.resize(filePort.readAt(file, 0, text.data(), text.size()));
    std::optional<std::vector<std::string>> left = recordsOf(text);
    if (!text.empty() && !left) {  // somebody's own
        filePort.close(file);
        return std::nullopt;
    }
    const HoldLock hold(logLock);
    state.file = file;
    state.path = path;
    filePort.cut(file, 0);
    filePort.writeAt(file, 0, firstLine.data(), firstLine.size());
    for (std::size_t i = 0; i < state.lines.size(); i++)
        putRecord(state.count - state.lines.size() + i, state.lines[i]);
    return left;
}

void eventLogRelease() {
    const HoldLock hold(logLock);
    if (state.file < 0) return;
    filePort.remove(state.path.c_str());
    filePort.close(std::exchange(state.file, -1));
}

}  // namespace numalink
