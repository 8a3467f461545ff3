#include "drawing/backup_picture.h"

#include <algorithm>
#include <optional>

#include "calculator/charset.h"
#include "calculator/frames.h"
#include "drawing/dot_fonts.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr std::size_t typeSize = 5;
constexpr std::size_t labelSize = 7, ruleLimit = 37, nameColumn = 12;
constexpr std::size_t nameSize = 15, passwordSize = 16, entryFlag = 16;
constexpr std::size_t tableAheadOfLength = 13;  // bytes from the table's start to the length that stands in the data
constexpr std::size_t lengthLess = 4;
constexpr int reportWidth = 150, lineHeight = 8;
constexpr std::uint8_t padding = 0xFF;

std::string drawn(Text text) { return calculatorFromUtf8(wording(text)); }

std::string fitted(std::string text, std::size_t size) {
    text.resize(size, ' ');
    return text;
}

std::string rule(std::size_t size) { return std::string(std::min(size, ruleLimit), '='); }

// Characters up to the padding, or all of the field that there is.
std::string fieldAt(ByteView data, std::size_t at, std::size_t size) {
    const ByteView field = data.subspan(at, std::min(size, data.size() - at));
    const auto end = std::ranges::find(field, padding);
    std::string text(field.begin(), end);
    std::ranges::replace(text, '\0', ' ');
    return text;
}

// Where the table of programs starts: found by the data's own length, which stands a little behind its start.
std::optional<std::size_t> programTable(ByteView data) {
    if (data.size() < lengthLess) return std::nullopt;
    const std::size_t length = data.size() - lengthLess;
    const std::uint8_t wanted[] = {static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(length >> 8)};
    const auto found = std::search(data.begin(), data.end(), std::begin(wanted), std::end(wanted));
    const auto place = static_cast<std::size_t>(found - data.begin());
    if (found == data.end() || place < tableAheadOfLength) return std::nullopt;
    return place - tableAheadOfLength;
}

void appendPrograms(std::vector<std::string> &lines, ByteView data, std::size_t at) {
    while (at + nameSize < data.size() && data[at] != 0) {
        std::string line = fieldAt(data, at, nameSize);
        const bool hasPassword = data[at + nameSize] == entryFlag;
        at += nameSize + 1;
        if (hasPassword && at < data.size()) {
            line = fitted(line, std::max(nameColumn, line.size())) + fieldAt(data, at, passwordSize);
            at += passwordSize;
        }
        lines.push_back(line);
    }
}

}  // namespace

std::vector<std::string> backupLines(ByteView head, ByteView data) {
    const std::string title = drawn(Text::backupTitle);
    std::vector<std::string> lines = {
        title, rule(title.size()),
        fitted(drawn(Text::backupSize), labelSize) + std::to_string(data.size() >> 10) + "k"};
    const std::optional<std::size_t> table = programTable(data);
    if (!table) return lines;
    const std::string type = head.size() > frameTypeOffset ? fieldAt(head, frameTypeOffset, typeSize) : std::string();
    lines.push_back(fitted(drawn(Text::backupType), labelSize) + type);
    lines.emplace_back();
    lines.push_back(drawn(Text::programsFolder) + " \xA9 " + drawn(Text::backupPassword));
    lines.push_back(rule(lines.back().size()));
    appendPrograms(lines, data, *table);
    return lines;
}

Surface drawBackup(ByteView head, ByteView data) {
    const std::vector<std::string> lines = backupLines(head, data);
    std::size_t longest = 0;
    for (const std::string &line : lines) longest = std::max(longest, line.size());
    Surface surface(std::max(reportWidth, static_cast<int>(longest) * largeCharAdvance + 2),
                    static_cast<int>(lines.size()) * lineHeight);
    for (std::size_t i = 0; i < lines.size(); i++)
        drawLargeText(surface, 1, static_cast<int>(i) * lineHeight, lines[i], lcdColor::blue, lcdColor::background);
    return surface;
}

}  // namespace numalink
