// Bytes as hexadecimal digits, for what commands print and read.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/bytes.h"

namespace numalink {

std::string hexFromBytes(ByteView bytes);  // two upper-case digits a byte, nothing between

// Pairs of digits, with blanks and line ends between pairs as one likes. Nothing when something else stands there.
std::optional<Bytes> bytesFromHex(std::string_view text);

}  // namespace numalink
