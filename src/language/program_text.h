// A program's lines with the bytes that they are stored as, and the way between a character on view and its byte. Pure;
// any thread once the tables are loaded.
#pragma once

#include <vector>

#include "text/view_runs.h"

namespace numalink {

struct TextLine {
    std::size_t at = 1;    // byte of the image at which it begins
    std::size_t size = 0;  // characters
    LineReading reading;   // up to its fault, if any
};
// Lines with a fault end at it: the rest of the program is as it would be without what stands behind.
struct ProgramText {
    Bytes image;  // without checksum
    std::vector<TextLine> lines;
};

void appendLine(std::vector<TextLine> &lines, std::size_t size, LineReading reading);
ProgramText programText(std::vector<TextLine> lines);
ProgramText programText(const std::vector<ViewLine> &lines, bool autoCorrect);
ProgramText programText(ByteView image);  // as its view shows it

struct TextPlace {
    std::size_t line = 0, character = 0;  // from 0
    friend bool operator==(const TextPlace &, const TextPlace &) = default;
};
// Whether the byte stands in a line that isn't read to its end.
bool isInFaultyLine(const ProgramText &text, std::size_t at);
TextPlace placeOfByte(const ProgramText &text, std::size_t at);
// Of the token that holds the character; the end of what was read behind the last. A line beyond the last counts as it.
std::size_t byteOfPlace(const ProgramText &text, const TextPlace &place);

}  // namespace numalink
