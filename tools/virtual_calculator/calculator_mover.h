// Moves the bytes of a virtual calculator over a descriptor in real time: at the pace of a line, and with the faults
// that a cable has.
#pragma once

#include <atomic>
#include <functional>
#include <random>

#include "virtual_calculator/calculator.h"

namespace calculator {

struct Faults {
    double lost = 0;     // how often a byte, of either direction, goes missing: 0 to 1
    double doubled = 0;  // comes twice
    double flipped = 0;  // has one bit changed
    std::mt19937_64 chance{1};
};

// What the faults make of one byte: none, one or two.
Bytes spoil(Faults &faults, std::uint8_t byte);

struct Moving {
    std::uint64_t byteMicroseconds = 0;    // of the line, both ways at once; 0: no pace
    std::uint64_t answerMilliseconds = 0;  // ahead of each time that it speaks
    std::uint64_t patience = 5000;         // milliseconds of silence until it gives up
    Faults faults{};
    std::atomic<bool> *stop = nullptr;          // ends it at once
    std::function<void(const Item &)> taken{};  // once the item's last acknowledgement is on the line
};

// 11 bit times a byte.
constexpr std::uint64_t lineByteMicroseconds(unsigned baud) { return (11000000 + baud / 2) / baud; }

// Until the calculator is over and has said all; false when it was stopped, or the descriptor failed.
bool moveCalculator(Calculator &calculator, int descriptor, Moving &moving);

}  // namespace calculator
