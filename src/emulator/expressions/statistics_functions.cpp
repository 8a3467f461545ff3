// The areas below the normal curve.
#include "emulator/expressions/statistics_functions.h"

#include <cmath>
#include <numbers>

#include "emulator/expressions/calls.h"

namespace numalink {

namespace {

double areaBelow(double t) { return std::erfc(-t / std::numbers::sqrt2) / 2; }
double areaFromZero(double t) { return std::erf(std::fabs(t) / std::numbers::sqrt2) / 2; }
double areaAbove(double t) { return std::erfc(t / std::numbers::sqrt2) / 2; }

template <double (*area)(double)>
ProgramCell areaOf(const CallArguments &arguments) {
    ComplexValue value[1];
    return readNumbers(arguments, value) ? numberCell(complexReal(area(value[0].re))) : numberCell({});
}

constexpr OperatorRow rows[] = {
    call({0xFB}, "P(", areaOf<areaBelow>),
    call({0xFC}, "Q(", areaOf<areaFromZero>),
    call({0xFD}, "R(", areaOf<areaAbove>),
};
static_assert(stepsRise(rows));

}  // namespace

std::span<const OperatorRow> statisticsRows() { return rows; }

}  // namespace numalink
