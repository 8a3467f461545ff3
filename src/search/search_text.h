// A program's text as it is searched: one string in UTF-8, with lines that end in a line feed, made fast enough for a
// whole library at each search. Line for line what its view shows, but for the plus. Pure; any thread once the token
// table is loaded.
#pragma once

#include <string>
#include <vector>

#include "platform/bytes.h"

namespace numalink {

struct SearchText {
    std::string text;
    // Of each token its bytes (the second in the high half) and where it starts in text; a line end is 0x0D. Empty
    // unless asked for.
    std::vector<std::uint16_t> tokens;
    std::vector<std::uint32_t> starts;
};

SearchText searchTextOf(ByteView image, bool withTokens);

// With a plain plus for the calculators' own, which has a full width: what is typed has the plain one. Each stays one
// character.
std::string withPlainPlus(std::string utf8);

// Made of the token table as it is at the first call, and with it: to be called where the table is loaded anew.
void searchTextForget();

}  // namespace numalink
