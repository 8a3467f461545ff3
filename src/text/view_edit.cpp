#include "text/view_edit.h"

#include <algorithm>
#include <deque>
#include <string>
#include <unordered_map>

#include "calculator/frames.h"
#include "text/lenient_text.h"

namespace numalink {

namespace {

bool holdsForeign(const ViewLine &line) {
    return std::ranges::any_of(line.origins, [](CodeOrigin from) { return isForeign(from); });
}

bool sameText(const ViewLine &typed, const ViewLine &old) { return typed.text == old.text && !holdsForeign(typed); }

// Old lines of one text, by their places.
using PlacesOfText = std::unordered_map<std::string, std::deque<std::size_t>>;

// Takes the first old line of the same text that stands behind those already taken, and notes which lines took one.
void takeInOrder(std::vector<ViewLine> &lines, const std::vector<ViewLine> &old, std::size_t ahead, std::size_t behind,
                 std::vector<bool> &taken) {
    PlacesOfText places;
    for (std::size_t i = ahead; i + behind < old.size(); i++) places[old[i].text].push_back(i);
    std::size_t next = ahead;
    for (std::size_t i = ahead; i + behind < lines.size(); i++) {
        const auto found = places.find(lines[i].text);
        if (found == places.end() || holdsForeign(lines[i])) continue;
        std::deque<std::size_t> &waiting = found->second;
        while (!waiting.empty() && waiting.front() < next) waiting.pop_front();
        if (waiting.empty()) continue;
        lines[i] = old[waiting.front()];
        taken[i] = true;
        next = waiting.front() + 1;
    }
}

}  // namespace

TextOverProgram linesOverProgram(ByteView image, std::string_view utf8) {
    const std::vector<ViewLine> old = viewLines(image);
    std::vector<std::string_view> texts = linesOfText(utf8);
    if (texts.size() > 1 && texts.back().empty()) texts.pop_back();
    std::vector<ViewLine> lines;
    lines.reserve(texts.size());
    for (const std::string_view text : texts) lines.push_back(typedLine(text));
    const std::size_t shorter = std::min(lines.size(), old.size());
    std::size_t ahead = 0;
    while (ahead < shorter && sameText(lines[ahead], old[ahead])) ahead++;
    std::size_t behind = 0;
    while (behind < shorter - ahead && sameText(lines[lines.size() - behind - 1], old[old.size() - behind - 1]))
        behind++;
    std::copy_n(old.begin(), ahead, lines.begin());
    std::copy_n(old.end() - static_cast<std::ptrdiff_t>(behind), behind,
                lines.end() - static_cast<std::ptrdiff_t>(behind));
    std::vector<bool> taken(lines.size(), false);
    std::fill_n(taken.begin(), ahead, true);
    std::fill_n(taken.end() - static_cast<std::ptrdiff_t>(behind), behind, true);
    takeInOrder(lines, old, ahead, behind, taken);
    LenientText text = lenientTextOf(utf8);
    for (std::size_t i = 0; i < lines.size(); i++)
        if (!taken[i]) lines[i] = lenientLine(text, texts[i]);
    return {std::move(lines), text.blanksLeftOut};
}

std::vector<TextFault> imageOfViewLines(const std::vector<ViewLine> &lines, bool autoCorrect, Bytes &image) {
    std::vector<LineBytes> read;
    std::vector<TextFault> faults;
    int number = 0;
    for (const ViewLine &line : lines) {
        number++;
        const LineReading reading = readLine(line, autoCorrect);
        if (reading.faultAt >= 0)
            faults.push_back({number, characterAt(line, static_cast<std::size_t>(reading.faultAt))});
        if (faults.empty()) read.push_back(lineBytes(reading));
    }
    if (!faults.empty()) return faults;
    image = imageOfLines(read);
    image.push_back(0);
    frameChecksum(image);
    return faults;
}

}  // namespace numalink
