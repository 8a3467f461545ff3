#include "language/program_text.h"

#include <algorithm>

namespace numalink {

namespace {

std::size_t byteCount(const LineReading &reading) {
    std::size_t count = 0;
    for (const ViewToken &token : reading.tokens) count += token.length;
    return count;
}

}  // namespace

void appendLine(std::vector<TextLine> &lines, std::size_t size, LineReading reading) {
    lines.push_back({.at = 1, .size = size, .reading = std::move(reading)});
}

ProgramText programText(std::vector<TextLine> lines) {
    ProgramText text;
    std::vector<LineBytes> bytes;
    bytes.reserve(lines.size());
    std::size_t at = 1;
    for (TextLine &line : lines) {
        line.at = at;
        bytes.push_back(lineBytes(line.reading));
        at += bytes.back().bytes.size() + (bytes.back().endsInDisplay ? 0 : 1);
    }
    text.image = imageOfLines(bytes);
    text.lines = std::move(lines);
    return text;
}

ProgramText programText(const std::vector<ViewLine> &lines, bool autoCorrect) {
    std::vector<TextLine> read;
    read.reserve(lines.size());
    for (const ViewLine &line : lines) appendLine(read, line.text.size(), readLine(line, autoCorrect));
    return programText(std::move(read));
}

ProgramText programText(ByteView image) { return programText(viewLines(image), false); }

bool isInFaultyLine(const ProgramText &text, std::size_t at) {
    return text.lines[placeOfByte(text, at).line].reading.faultAt >= 0;
}

TextPlace placeOfByte(const ProgramText &text, std::size_t at) {
    const auto behind = std::ranges::upper_bound(text.lines, at, {}, &TextLine::at);
    const auto line = behind == text.lines.begin() ? behind : behind - 1;
    TextPlace place{static_cast<std::size_t>(line - text.lines.begin()), 0};
    std::size_t byte = line->at;
    for (const ViewToken &token : line->reading.tokens) {
        if (at < byte + token.length) {
            place.character = token.from;
            return place;
        }
        byte += token.length;
        place.character = token.from + token.size;
    }
    return place;
}

std::size_t byteOfPlace(const ProgramText &text, const TextPlace &place) {
    if (place.line >= text.lines.size()) return text.lines.back().at + byteCount(text.lines.back().reading);
    const TextLine &line = text.lines[place.line];
    std::size_t at = line.at;
    for (const ViewToken &token : line.reading.tokens) {
        if (place.character < token.from + token.size) break;
        at += token.length;
    }
    return at;
}

}  // namespace numalink
