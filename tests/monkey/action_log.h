// What the monkey has done of late, told when the program dies, and a watch over a program that hangs.
#pragma once

#include <cstdint>

namespace monkey {

// Hooks into aborts and the sanitizers' deaths. Once, ahead of all else.
void watchForDeath(std::uint64_t seed);
void stopWatching();

// The graphical thread alone. The text is cut at 150 bytes.
void logAction(std::uint64_t number, const char *format, ...) __attribute__((format(printf, 2, 3)));
[[noreturn]] void fail(const char *format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace monkey
