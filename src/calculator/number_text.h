// One matrix or list element: the 16-byte value frame with its decimal digits, the double that the program
// computes with, and the text of exchange files. Pure; any thread; whatever the locale.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/bytes.h"

namespace numalink {

inline constexpr std::size_t valueFrameSize = 16;
inline constexpr std::size_t valueRowOffset = 1, valueColumnOffset = 3;  // numbers of two bytes, from 1

// Fills bytes 0 to 14, the value rounded at 15 digits; byte 15, the checksum's place, stays. False, with nothing
// written, for a value that isn't finite or whose exponent lies outside -99 to 99. Row and column from 1.
bool encodeValue(std::span<std::uint8_t, valueFrameSize> frame, std::uint32_t row, std::uint32_t column, double value);

// Bytes 5 to 14 as the nearest number, which gives the same digits back; nibbles beyond 9 count as they stand.
double decodeValue(std::span<const std::uint8_t, valueFrameSize> frame);

// As "-1.5\EE+3": mantissa of 1 to 15 digits between 1 and 10, exponent unless it is 0. Nothing for a value
// that isn't finite.
std::string formatValueText(double value);

// The reverse, also plain decimals. Nothing when the text is no number from end to end (blanks at its ends aside), or
// the number isn't finite.
std::optional<double> parseValueText(std::string_view text);

}  // namespace numalink
