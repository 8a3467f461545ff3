// The named numbers as runs of tokens.
#include "emulator/machine/named_values.h"

#include <algorithm>

namespace numalink {

namespace {

struct NamedRow {
    Token first, last;  // a run of tokens, or the same one twice
};

constexpr NamedRow rows[] = {
    {{0x7F, 0x64}, {0x7F, 0x68}},  // n, I%, PV, PMT, FV
    {{0x7F, 0x70}, {0x7F, 0x75}},  // Sim X to Sim V
    {{0x7F, 0x80}, {0x7F, 0x82}},  // Ply X1 to Ply X3
    {{0x7F, 0x91}, {0x7F, 0x93}},  // F Start, F End, F pitch
    {{0x7F, 0x95}, {0x7F, 0x97}},  // R Start, R End, R pitch
    {{0x7F, 0xCC}, {0x7F, 0xCD}},  // P/Y, C/Y
};

constexpr std::size_t placeOf(Token which) {
    return which.first == 0x7F ? which.second : std::size_t{256} + which.first;
}

}  // namespace

ComplexValue *namedValueRef(Token which) {
    if (which.first == 0xF7) return nullptr;
    const std::size_t place = placeOf(which);
    const auto holds = [place](const NamedRow &row) {
        return placeOf(row.first) <= place && place <= placeOf(row.last);
    };
    return std::ranges::any_of(rows, holds) ? &machine.namedValues[place] : nullptr;
}

ComplexValue &namedValue(Token which) { return machine.namedValues[placeOf(which)]; }

}  // namespace numalink
