// The calculators' dictionary: token bytes against what people read. Loaded once on the graphical thread, then only
// read, by any thread. Order decides ties: the records stay as in the file.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/bytes.h"

namespace numalink {

inline constexpr std::size_t tokenRecordSize = 44;
inline constexpr std::size_t tokenRecordLimit = 800;  // records beyond it aren't taken
inline constexpr std::size_t tokenTextSize = 20;      // a text and its terminator

struct TokenRecord {
    std::uint8_t length;
    std::uint8_t byte1;
    std::uint8_t byte2;
    std::uint8_t glyph;
    char displayText[tokenTextSize];
    char asciiText[tokenTextSize];
};
static_assert(sizeof(TokenRecord) == tokenRecordSize);

// Reads casio.ptt of the program folder. False, with the table as it was, when it can't be opened. Texts without
// terminator are cut; records of a length other than 1 or 2 are dropped.
bool tokenTableLoad();
void tokenTableSet(ByteView file);  // the same from bytes, for tests and tools
std::size_t tokenCount();
const TokenRecord &tokenRecord(std::size_t index);
std::string_view tokenDisplay(const TokenRecord &record);  // the glyph as one character, or displayText

// The numbers of the records whose display text may begin with a character, in file order: letters of either case and
// the three minus-like characters count as one.
std::span<const std::uint16_t> tokensShownFrom(char first);

// Length of the token at the start of bytes, 0 when no record fits; text is then empty. Never reads past bytes.
// text stays valid until the table is loaded anew.
int tokenToText(ByteView bytes, std::string_view &text);

// The exchange word, or nothing. tokenLength is 2 behind 0x7F and 0xF7, else 1 (also when nothing fits).
std::optional<std::string_view> tokenToAscii(ByteView bytes, int &tokenLength);

// The record with the longest exchange word at the start of text, or null. First of the longest.
const TokenRecord *asciiToToken(std::string_view text);

}  // namespace numalink
