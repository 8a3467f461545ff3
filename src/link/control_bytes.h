// The bytes that the two sides of a conversation send alone, between frames.
#pragma once

#include <cstdint>

namespace numalink::control {

inline constexpr std::uint8_t attention = 0x16;     // the sender wants to transmit
inline constexpr std::uint8_t cfxAttention = 0x15;  // the same, from a CFX calculator
inline constexpr std::uint8_t ready = 0x13;         // the answer to attention
inline constexpr std::uint8_t acknowledge = 0x06;
inline constexpr std::uint8_t refuse = 0x15;  // don't overwrite: on to the next item
inline constexpr std::uint8_t cancel = 0x18;  // don't overwrite: stop
inline constexpr std::uint8_t itemExists = 0x21;
inline constexpr std::uint8_t unknownType = 0x22;
inline constexpr std::uint8_t headRefused = 0x24;
inline constexpr std::uint8_t checksumError = 0x2B;

}  // namespace numalink::control
