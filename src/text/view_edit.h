// A program's text from outside of the editor, put in the place of the one that is there: lines that stay the same keep
// their bytes, all others count as typed. No state; any thread once the tables are loaded.
#pragma once

#include <string_view>
#include <vector>

#include "text/view_runs.h"

namespace numalink {

// A line of UTF-8 as typed characters. What has no code is foreign; an accent goes where its plain letter has one.
ViewLine typedLine(std::string_view utf8);

// The lines of utf8 (ends LF or CR LF; one at the very end adds no line) over those of the program: each takes the
// bytes of a line of the same text, in order from both ends and in between.
std::vector<ViewLine> linesOverProgram(ByteView image, std::string_view utf8);

// The image of the lines with the checksum at its end. -1 and the image, or the number (from 1) of the first line that
// holds a character without a code.
int imageOfViewLines(const std::vector<ViewLine> &lines, bool autoCorrect, Bytes &image);

}  // namespace numalink
