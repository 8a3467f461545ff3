// Items by chance, as a calculator sends them: every kind, with few names, so that some come again.
#pragma once

#include <algorithm>
#include <functional>
#include <random>

#include "virtual_calculator/calculator_frames.h"

namespace calculator {

inline Bytes randomBytes(std::mt19937_64 &chance, std::size_t count, std::uint64_t values) {
    Bytes bytes(count);
    for (std::uint8_t &byte : bytes) byte = static_cast<std::uint8_t>(chance() % values);
    return bytes;
}

inline std::string randomName(std::mt19937_64 &chance) { return std::string(1, static_cast<char>('A' + chance() % 6)); }

// Screen copies only where it is the calculator that sends.
inline Item randomItem(std::mt19937_64 &chance, bool algebra, bool sends) {
    const auto roll = [&chance](std::uint64_t below) { return chance() % below; };
    const std::string name = randomName(chance);
    const auto seed = static_cast<std::uint8_t>(roll(256));
    const int rows = static_cast<int>(1 + roll(4));
    if (algebra && roll(2) == 0) return algebraBlock(name, static_cast<std::uint8_t>(2 + roll(5)), 2 + roll(300), seed);
    if (algebra) return algebraProgram(name, randomBytes(chance, roll(300), 255));
    const std::function<Item()> makers[] = {
        [&] { return valueItem("MT", name, "", rows, static_cast<int>(1 + roll(3)), seed); },
        [&] { return valueItem("LT", name, roll(2) == 0 ? "File1" : "", rows, 1, seed); },
        [&] { return memory(roll(2) == 0 ? "GM" : "GF", name, 2 + roll(200), seed); },
        [&] { return picture(8 * rows, 16, 1, static_cast<int>(1 + roll(3)), seed); },
        [&] {
            return sends ? screenCopy(roll(2) == 0, 64, 128, seed) : program(name, {1, 2});
        },
        [&] { return memory("BU", name, 2 + roll(500), seed); },
        [&] { return program(name, randomBytes(chance, roll(200), 255)); }};
    return makers[std::min<std::uint64_t>(roll(8), 6)]();
}

}  // namespace calculator
