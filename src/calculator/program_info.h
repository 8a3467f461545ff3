// The 32 bytes that stand for a program's head in the library, and the image that follows them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"

namespace numalink {

inline constexpr std::size_t programInfoSize = 32;
inline constexpr std::size_t programNameOffset = 8;  // of the name in the 32 bytes
inline constexpr std::size_t programNameLimit = 8;   // characters of a program's name or password
inline constexpr std::size_t optionOffset = 29;  // what a head has at 35 and 36; 0 0 for the usual bytes of its kind

struct ProgramInfo {
    std::uint32_t imageLength = 1;  // bytes that a transmission announces
    std::string name;               // calculator codes, at most 8
    std::string password;           // the same
    std::uint8_t option[2] = {0, 0};
};

// Whether this byte and the next make one token.
constexpr bool isTokenPrefix(std::uint8_t byte) { return byte == 0x7F || byte == 0xF7; }

// The 32 bytes as they lie in the file. Names beyond 8 codes are cut.
Bytes encodeProgramInfo(const ProgramInfo &info);

// None when there are fewer than 32 bytes. Texts without an end are cut at 8.
std::optional<ProgramInfo> decodeProgramInfo(ByteView head);

// A text item's head without the name in it; another kind's as it is. For telling whether items are the same.
Bytes headWithoutName(ItemKind itemKind, ByteView head);

// Whether a call of one name finds the program of the other: letters of either case, and the signs that stand for a
// hyphen, count as one. Calculator codes.
bool sameProgramName(std::string_view left, std::string_view right);

// The token bytes of an image: behind ':' and up to the end mark, the first 0xFF or 0 at a token boundary.
// Where no such mark stands (a prefix has taken it), the last 0xFF or the one ahead of a checksum is the end.
// An image that doesn't start with ':' gives its bytes from the second on all the same; an empty one nothing.
ByteView programTokens(ByteView image);

// The image with a place for its checksum behind the end mark: one that was never stored from the editor lacks it.
Bytes imageWithChecksumPlace(ByteView image);

}  // namespace numalink
