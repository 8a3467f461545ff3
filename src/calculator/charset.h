// The calculators' 256 character codes against Unicode, one to one. Fixed tables made from data/charset.tsv.
// Any thread; no state.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace numalink {

// One code point for each code and back; every code has one, and no two share one.
char32_t charsetToUnicode(std::uint8_t code);
std::optional<std::uint8_t> charsetFromUnicode(char32_t codePoint);

// Takes one code point from the front of utf8, which mustn't be empty; brokenCodePoint, with one byte taken, where
// there is none. The reverse appends one; what is no code point comes as U+FFFD.
inline constexpr char32_t brokenCodePoint = 0xFFFFFFFF;
char32_t takeCodePoint(std::string_view &utf8);
void appendUtf8(std::string &utf8, char32_t codePoint);

// A calculator text as UTF-8, without loss.
std::string utf8FromCalculator(std::string_view calculatorText);

// UTF-8 as calculator codes. Code points without a code, and broken UTF-8, go to missing (their count) and stand
// as "?" in the result. A letter with an accent that has no code takes its plain letter, and isn't counted.
std::string calculatorFromUtf8(std::string_view utf8, int *missing = nullptr);

// A folder or standard-folder name brought into the character set and cut to 52 codes.
std::string calculatorName(std::string_view utf8);

}  // namespace numalink
