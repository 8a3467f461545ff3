// What was typed, one token at a time: exact display texts, and with auto-correct on, the spellings of an ordinary
// keyboard. Any thread once the tables are loaded.
#pragma once

#include <cstdint>
#include <string_view>

namespace numalink {

struct TypedToken {
    std::uint8_t byte1 = 0;
    std::uint8_t byte2 = 0;
    int length = 0;  // 1 or 2 bytes
    int used = 0;    // characters of the text, 0 when nothing fits
};

// The token at the start of text (calculator codes); quoted inside a string or comment. Reads the setting.
TypedToken textToToken(std::string_view text, bool quoted);
TypedToken textToToken(std::string_view text, bool quoted, bool autoCorrect);

// Whether the first count characters agree; both must hold as many.
bool textMatches(std::string_view tokenText, std::string_view text, std::size_t count, bool exact, bool dashes);

}  // namespace numalink
