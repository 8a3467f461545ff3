// A program's text from outside of the editor, put in the place of the one that is there: lines that stay the same keep
// their bytes, all others count as typed. No state; any thread once the tables are loaded.
#pragma once

#include <string_view>
#include <vector>

#include "text/text_faults.h"
#include "text/view_runs.h"

namespace numalink {

// The lines of utf8 (one end at the very end adds no line) over those of the program: each takes the bytes of a line of
// the same text, in order from both ends and in between. The others are read as text from elsewhere.
struct TextOverProgram {
    std::vector<ViewLine> lines;
    bool blanksLeftOut = false;  // of the lines that were read
};
TextOverProgram linesOverProgram(ByteView image, std::string_view utf8);

// The image of the lines with the checksum at its end; or what is no token, the first of each faulty line.
std::vector<TextFault> imageOfViewLines(const std::vector<ViewLine> &lines, bool autoCorrect, Bytes &image);

}  // namespace numalink
