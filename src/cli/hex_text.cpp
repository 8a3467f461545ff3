#include "cli/hex_text.h"

#include <charconv>

namespace numalink {

std::string hexFromBytes(ByteView bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

std::optional<Bytes> bytesFromHex(std::string_view text) {
    Bytes bytes;
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
        if (text.empty()) return bytes;
        std::uint8_t byte = 0;
        const std::string_view pair = text.substr(0, 2);
        const auto [end, error] = std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
        if (error != std::errc{} || pair.size() < 2 || end != pair.data() + 2) return std::nullopt;
        bytes.push_back(byte);
        text.remove_prefix(2);
    }
}

}  // namespace numalink
