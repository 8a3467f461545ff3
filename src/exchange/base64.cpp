#include "exchange/base64.h"

#include <algorithm>

namespace numalink {

namespace {

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view blanks = " \t\r\n";

}  // namespace

std::string base64FromBytes(ByteView bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t count = std::min<std::size_t>(bytes.size() - at, 3);
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; i++) group = group << 8 | (i < count ? bytes[at + i] : 0u);
        for (std::size_t i = 0; i < 4; i++) text += i <= count ? digits[group >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

std::optional<Bytes> bytesFromBase64(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    text = text.substr(0, text.find_last_not_of(blanks) + 1);
    if (text.size() % 4 != 0) return std::nullopt;
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    text.remove_suffix(padding);
    Bytes bytes;
    bytes.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t group = 0;
    std::size_t bits = 0;
    for (const char c : text) {
        const std::size_t digit = digits.find(c);
        if (digit == std::string_view::npos) return std::nullopt;
        group = (group << 6 | static_cast<std::uint32_t>(digit)) & 0xFFF;
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        bytes.push_back(static_cast<std::uint8_t>(group >> bits));
    }
    if ((group & ((1u << bits) - 1)) != 0) return std::nullopt;  // bits that no writer sets
    return bytes;
}

}  // namespace numalink
