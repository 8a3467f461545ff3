// Text from elsewhere that becomes a program's: pasted, written into it, or found in an item file. Characters that
// other programs write are taken for those that they stand for, and what only lays a listing out is left away. No
// state; any thread once the tables are loaded.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "text/view_runs.h"

namespace numalink {

// The lines of a UTF-8 text: ends are LF, CR, CR LF, a form feed, the line separators of Unicode, and the arrow of a
// printed line end, alone or ahead of one of these. A byte order mark is skipped. At least one line.
std::vector<std::string_view> linesOfText(std::string_view utf8);

// What is known of a text as a whole, and what was left away.
struct LenientText {
    bool isFullWidth = false;    // holds full-width forms that no calculator has: those that one has are letters too
    bool blanksLeftOut = false;  // blanks or tabs outside of quotes, in any of its lines so far
};
LenientText lenientTextOf(std::string_view utf8);

// Where a line of the text goes.
struct LinePlace {
    Quoting quoting{};       // ahead of it
    bool startsLine = true;  // nothing but blanks stands ahead of it
    bool reachesEnd = true;  // nothing comes behind it
};

// The line as untouched tokens, with all auto-correct whatever the setting is; a line with a fault (a character that is
// no token) comes as typed characters.
ViewLine lenientLine(LenientText &text, std::string_view utf8, const LinePlace &place = {});

// A line of UTF-8 as typed characters, without a change. What has no code is foreign; an accent goes where its plain
// letter has one.
ViewLine typedLine(std::string_view utf8);

// What a character without a code stands for, else the character itself. 0 for one without a width.
char32_t lenientCharacter(char32_t codePoint);

// Appends the token of the character beyond ASCII at the start of utf8, and gives its bytes; 0 when there is none.
std::size_t readLenientCharacter(std::string_view utf8, Quoting quoting, Bytes &tokens);

}  // namespace numalink
