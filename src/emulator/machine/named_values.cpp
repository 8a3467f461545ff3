// The named numbers as runs of tokens.
#include "emulator/machine/named_values.h"

#include <algorithm>

namespace numalink {

namespace {

struct NamedRow {
    Token first, last;  // a run of tokens, or the same one twice
};

constexpr NamedRow rows[] = {
    {{0x7F, 0x0B}, {0x7F, 0x0F}},  // Xfct, Yfct, D Start, D End, D pitch
    {{0x7F, 0x10}, {0x7F, 0x12}},  // the right screen's window: X,
    {{0x7F, 0x14}, {0x7F, 0x16}},  // Y,
    {{0x7F, 0x18}, {0x7F, 0x1A}},  // and T and theta
    {{0x8F}, {0x8F}},              // sum of x squared
    {{0x9E}, {0x9F}},              // Med, sum of x
    {{0xAD}, {0xAF}},              // minY, minX, n
    {{0xBD}, {0xBF}},              // maxY, maxX, sum of y squared
    {{0xC2}, {0xCA}},              // means, deviations, a, b and r of regressions
    {{0xCF}, {0xCF}},              // sum of y
    {{0xDF}, {0xDF}},              // sum of x y
    {{0x7F, 0x1D}, {0x7F, 0x1F}},  // c, d, e of regressions
    {{0x7F, 0x64}, {0x7F, 0x68}},  // n, I%, PV, PMT, FV
    {{0x7F, 0x70}, {0x7F, 0x75}},  // Sim X to Sim V
    {{0x7F, 0x76}, {0x7F, 0x7D}},  // quartiles, the median line's x1 to y3
    {{0x7F, 0x80}, {0x7F, 0x82}},  // Ply X1 to Ply X3
    {{0x7F, 0x91}, {0x7F, 0x93}},  // F Start, F End, F pitch
    {{0x7F, 0x95}, {0x7F, 0x97}},  // R Start, R End, R pitch
    {{0x7F, 0x8C}, {0x7F, 0x8E}},  // sums of a, b, c at n,
    {{0x7F, 0xB5}, {0x7F, 0xB7}},  // n + 1
    {{0x7F, 0xB9}, {0x7F, 0xBB}},  // and n + 2
    {{0x7F, 0xA0}, {0x7F, 0xAE}},  // a and b at n to n + 2, n, first terms, starts of webs
    {{0x7F, 0x98}, {0x7F, 0x98}},  // H pitch
    {{0x7F, 0xBE}, {0x7F, 0xBE}},  // from here on what tests and intervals leave, beside money's P/Y and C/Y
    {{0x7F, 0xC0}, {0x7F, 0xCE}},
    {{0x7F, 0xD0}, {0x7F, 0xDE}},
    {{0x7F, 0xE0}, {0x7F, 0xE4}},
    {{0x7F, 0xFB}, {0x7F, 0xFE}},
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
