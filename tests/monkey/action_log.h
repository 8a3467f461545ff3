// What the monkey does, told as it does it: the last lines ahead of a failure, and the seed in the first, say how it
// came about.
#pragma once

#include <cstdint>

namespace monkey {

// The graphical thread alone. A program that does nothing more for long after it is ended by an alarm.
void logAction(std::uint64_t number, const char *format, ...) __attribute__((format(printf, 2, 3)));
[[noreturn]] void fail(const char *format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace monkey
