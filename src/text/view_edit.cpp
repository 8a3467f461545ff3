#include "text/view_edit.h"

#include <algorithm>
#include <deque>
#include <string>
#include <unordered_map>

#include "calculator/charset.h"
#include "calculator/frames.h"

namespace numalink {

namespace {

bool isFollower(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

std::vector<ViewLine> typedLines(std::string_view utf8) {
    if (utf8.ends_with('\n')) utf8.remove_suffix(1);
    std::vector<ViewLine> lines;
    for (;;) {
        const std::size_t end = std::min(utf8.find('\n'), utf8.size());
        std::string_view line = utf8.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(typedLine(line));
        if (end == utf8.size()) return lines;
        utf8.remove_prefix(end + 1);
    }
}

bool isForeign(const ViewLine &line) { return std::ranges::find(line.origins, origin::foreign) != line.origins.end(); }

bool sameText(const ViewLine &typed, const ViewLine &old) { return typed.text == old.text && !isForeign(typed); }

// Old lines of one text, by their places.
using PlacesOfText = std::unordered_map<std::string, std::deque<std::size_t>>;

// Takes the first old line of the same text that stands behind those already taken.
void takeInOrder(std::vector<ViewLine> &lines, const std::vector<ViewLine> &old, std::size_t ahead,
                 std::size_t behind) {
    PlacesOfText places;
    for (std::size_t i = ahead; i + behind < old.size(); i++) places[old[i].text].push_back(i);
    std::size_t next = ahead;
    for (std::size_t i = ahead; i + behind < lines.size(); i++) {
        const auto found = places.find(lines[i].text);
        if (found == places.end() || isForeign(lines[i])) continue;
        std::deque<std::size_t> &waiting = found->second;
        while (!waiting.empty() && waiting.front() < next) waiting.pop_front();
        if (waiting.empty()) continue;
        lines[i] = old[waiting.front()];
        next = waiting.front() + 1;
    }
}

}  // namespace

ViewLine typedLine(std::string_view utf8) {
    ViewLine line;
    while (!utf8.empty()) {
        std::size_t size = 1;
        while (size < utf8.size() && isFollower(utf8[size])) size++;
        int missing = 0;
        const std::string code = calculatorFromUtf8(utf8.substr(0, size), &missing);
        line.text += code;
        line.origins.resize(line.text.size(), missing > 0 ? origin::foreign : origin::typed);
        utf8.remove_prefix(size);
    }
    return line;
}

std::vector<ViewLine> linesOverProgram(ByteView image, std::string_view utf8) {
    const std::vector<ViewLine> old = viewLines(image);
    std::vector<ViewLine> lines = typedLines(utf8);
    const std::size_t shorter = std::min(lines.size(), old.size());
    std::size_t ahead = 0;
    while (ahead < shorter && sameText(lines[ahead], old[ahead])) ahead++;
    std::size_t behind = 0;
    while (behind < shorter - ahead && sameText(lines[lines.size() - behind - 1], old[old.size() - behind - 1]))
        behind++;
    std::copy_n(old.begin(), ahead, lines.begin());
    std::copy_n(old.end() - static_cast<std::ptrdiff_t>(behind), behind,
                lines.end() - static_cast<std::ptrdiff_t>(behind));
    takeInOrder(lines, old, ahead, behind);
    return lines;
}

int imageOfViewLines(const std::vector<ViewLine> &lines, bool autoCorrect, Bytes &image) {
    std::vector<LineBytes> read;
    for (const ViewLine &line : lines) {
        const LineReading reading = readLine(line, autoCorrect);
        if (reading.faultAt >= 0) return static_cast<int>(read.size()) + 1;
        read.push_back(lineBytes(reading));
    }
    image = imageOfLines(read);
    image.push_back(0);
    frameChecksum(image);
    return -1;
}

}  // namespace numalink
