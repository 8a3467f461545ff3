// Bytes as base64 on one line, with its padding, and back. Any thread; no state.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/bytes.h"

namespace numalink {

std::string base64FromBytes(ByteView bytes);
// Blanks and line ends at both ends are passed over; nothing for any other sign that doesn't belong there.
std::optional<Bytes> bytesFromBase64(std::string_view text);

}  // namespace numalink
