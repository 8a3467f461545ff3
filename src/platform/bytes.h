// Bytes in memory, and numbers of 16 and 32 bits in either order at an offset.
// The readers and writers expect the caller to have tested that the offset lies inside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace numalink {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

inline std::uint16_t readBig16(ByteView bytes, std::size_t offset) {
    return static_cast<std::uint16_t>(bytes[offset] << 8 | bytes[offset + 1]);
}

inline void writeBig16(std::span<std::uint8_t> bytes, std::size_t offset, std::uint32_t value) {
    bytes[offset] = static_cast<std::uint8_t>(value >> 8);
    bytes[offset + 1] = static_cast<std::uint8_t>(value);
}

inline std::uint32_t readLittle32(ByteView bytes, std::size_t offset) {
    return static_cast<std::uint32_t>(bytes[offset]) | static_cast<std::uint32_t>(bytes[offset + 1]) << 8 |
           static_cast<std::uint32_t>(bytes[offset + 2]) << 16 | static_cast<std::uint32_t>(bytes[offset + 3]) << 24;
}

inline void writeLittle32(std::span<std::uint8_t> bytes, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; i++) bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

}  // namespace numalink
