// A program's lines on their way through plain text, such as a mail: text alone can't tell the letters of "or" from the
// token that shows as "or". So a line leaves in pieces, to be parted by an invisible character, wherever its text alone
// would come back as other bytes. Calculator codes; no state; any thread once the tables are loaded.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "text/lenient_text.h"
#include "text/view_runs.h"

namespace numalink {

// Without width, and kept by mails.
inline constexpr std::string_view pieceSeparator = "\u200C";

// One piece for most lines; an empty one behind it has the line parted all the same, where a reader of text from
// elsewhere would leave blanks away or take a character for another. A piece of one character is its own byte, a piece
// that is a mark gives the byte back.
std::vector<std::string> piecesOfLine(const ViewLine &line);

// The line again, all of it as untouched tokens. False for what is no token.
bool lineOfPieces(const std::vector<std::string> &pieces, ViewLine &line);

// The same in UTF-8, as files have it: pieces are parted by the separator.
std::string partedUtf8(const ViewLine &line);
// The line of such a text, untouched tokens all of it. A text that isn't parted is read as typed, with all
// auto-correct; text tells of the whole that the line is of. False for what is no token.
bool lineOfPartedUtf8(LenientText &text, std::string_view utf8, ViewLine &line);

}  // namespace numalink
