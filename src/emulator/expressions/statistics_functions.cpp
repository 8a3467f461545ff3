// The areas below the normal curve, and what the latest statistics estimate.
#include "emulator/expressions/statistics_functions.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "emulator/expressions/calls.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/named_values.h"
#include "emulator/machine/statistics_memory.h"

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

// How many deviations of the latest sample a value lies above its mean.
double deviationsAboveMean(double x) {
    constexpr Token mean{0xC2}, deviation{0xC4};
    return (x - namedValue(mean).re) / namedValue(deviation).re;
}

// By the latest regression; no number where there has been none.
template <double (*estimate)(const Regression &, double)>
ComplexValue estimated(ComplexValue a) {
    const auto &curve = statisticsMemory.curve;
    return complexReal(curve.has_value() ? estimate(*curve, a.re) : std::numeric_limits<double>::quiet_NaN());
}

ProgramCell normalized(const CallArguments &arguments) {
    ComplexValue value[1];
    if (!readNumbers(arguments, value)) return numberCell({});
    const double t = deviationsAboveMean(value[0].re);
    return std::fabs(t) <= largestResult ? numberCell(complexReal(t)) : refusedCall(maError);
}

constexpr OperatorRow rows[] = {
    call({0xFB}, "P(", areaOf<areaBelow>),
    call({0xFC}, "Q(", areaOf<areaFromZero>),
    call({0xFD}, "R(", areaOf<areaAbove>),
    call({0xFE}, "t(", normalized),

    unary({0xCB}, Step::postfix, "estimated x", estimated<curveInverse>, Bound::ofCalculators),
    unary({0xCC}, Step::postfix, "estimated y", estimated<curveAt>, Bound::ofCalculators),
};
static_assert(stepsRise(rows));

}  // namespace

std::span<const OperatorRow> statisticsRows() { return rows; }

}  // namespace numalink
