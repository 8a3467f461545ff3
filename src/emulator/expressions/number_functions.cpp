// The functions of numbers. Where an operation has no value it gives no number, which its bound reports.
#include "emulator/expressions/number_functions.h"

#include <cmath>
#include <limits>

#include "emulator/expressions/angles.h"
#include "emulator/expressions/calls.h"
#include "emulator/expressions/complex_math.h"
#include "emulator/screens/screen_number.h"

namespace numalink {

namespace {

using Value = ComplexValue;

constexpr double none = std::numeric_limits<double>::quiet_NaN();
constexpr double factorialLimit = 69;  // the largest whose factorial is below 10 to the 100th

bool isCount(double x) { return x >= 0 && std::trunc(x) == x; }

// n times the whole numbers below it, so many in all.
double fallingProduct(double n, double factors) {
    double product = 1;
    const auto count = static_cast<std::int64_t>(factors);
    for (std::int64_t k = 0; k < count && product <= largestResult; k++) product *= n - static_cast<double>(k);
    return product;
}

Value factorial(Value n) {
    return complexReal(n.im == 0 && isCount(n.re) && n.re <= factorialLimit ? fallingProduct(n.re, n.re) : none);
}

constexpr double choiceLimit = 1e10;  // of n and of r on the calculators

bool canChoose(Value n, Value r) { return isCount(n.re) && isCount(r.re) && r.re <= n.re && n.re < choiceLimit; }

Value permutations(Value n, Value r) { return complexReal(canChoose(n, r) ? fallingProduct(n.re, r.re) : none); }

// Each step is a whole number itself, so that nothing is lost below 2 to the 53rd.
Value combinations(Value n, Value r) {
    if (!canChoose(n, r)) return complexReal(none);
    const double factors = std::fmin(r.re, n.re - r.re);
    double product = 1;
    const auto count = static_cast<std::int64_t>(factors);
    for (std::int64_t i = 1; i <= count && product <= largestResult; i++) {
        const auto k = static_cast<double>(i);
        product = product * (n.re - factors + k) / k;
    }
    return complexReal(product);
}

template <double (*function)(double)>
Value ofReal(Value a) {
    return complexReal(function(a.re));
}
double powerOfE(double x) { return std::exp(x); }
double powerOfTen(double x) { return std::pow(10.0, x); }

// Ans at the digits that the display shows.
Value roundedAns() {
    return complexMake(roundedAsShown(machine.ans.re, machine.format), roundedAsShown(machine.ans.im, machine.format));
}

// The rest lies between 0 and the divisor.
Value modulo(Value a, Value b) { return complexReal(b.re == 0 ? none : a.re - b.re * std::floor(a.re / b.re)); }

// What stands behind a number names the unit that it is in; the value goes on in the unit of the machine.
template <AngleUnit unit>
Value fromUnit(Value a) {
    if (unit == machine.angleUnit) return a;
    const double factor = radiansPerUnit(unit) / radiansPerUnit(machine.angleUnit);
    return complexMake(a.re * factor, a.im * factor);
}

// A complex number by its size and angle.
Value byAngle(Value size, Value angle) {
    return complexMake(size.re * cosineOf(angle.re, machine.angleUnit), size.re * sineOf(angle.re, machine.angleUnit));
}

template <int exponent>
Value engineering(Value a) {
    const double factor = std::pow(10.0, exponent);
    return complexMake(a.re * factor, a.im * factor);
}

Value unchanged(Value a) { return a; }

Value exclusive(Value a, Value b) { return complexReal((a.re != 0) != (b.re != 0) ? 1 : 0); }
Value bitsOfOne(Value a, Value b) { return complexReal(wrappedInteger(a.re) ^ wrappedInteger(b.re)); }
Value bitsAlike(Value a, Value b) { return complexReal(~(wrappedInteger(a.re) ^ wrappedInteger(b.re))); }
Value negatedBits(Value a) { return complexReal(wrappedInteger(-double{1} * wrappedInteger(a.re))); }

// Distance and angle of a place; the other way about, the place.
ProgramCell toPolar(const CallArguments &arguments) {
    Value values[2];
    if (!readNumbers(arguments, values)) return numberCell({});
    const double x = values[0].re, y = values[1].re;
    return listOfTwo(std::hypot(x, y), std::atan2(y, x) / radiansPerUnit(machine.angleUnit));
}
ProgramCell toRectangular(const CallArguments &arguments) {
    Value values[2];
    if (!readNumbers(arguments, values)) return numberCell({});
    const double distance = values[0].re, angle = values[1].re;
    return listOfTwo(distance * cosineOf(angle, machine.angleUnit), distance * sineOf(angle, machine.angleUnit));
}

constexpr Bound bounded = Bound::ofCalculators;

constexpr OperatorRow rows[] = {
    call({0x80}, "Pol(", toPolar),
    call({0xA0}, "Rec(", toRectangular),

    source({0xD3}, "Rnd", roundedAns),

    unary({0x01}, Step::postfix, "femto", engineering<-15>),
    unary({0x02}, Step::postfix, "pico", engineering<-12>),
    unary({0x03}, Step::postfix, "nano", engineering<-9>),
    unary({0x04}, Step::postfix, "micro", engineering<-6>),
    unary({0x05}, Step::postfix, "milli", engineering<-3>),
    unary({0x06}, Step::postfix, "kilo", engineering<3>),
    unary({0x07}, Step::postfix, "mega", engineering<6>),
    unary({0x08}, Step::postfix, "giga", engineering<9>),
    unary({0x09}, Step::postfix, "tera", engineering<12>),
    unary({0x0A}, Step::postfix, "peta", engineering<15>),
    unary({0x0B}, Step::postfix, "exa", engineering<18>),
    unary(token::toSexagesimal, Step::postfix, "to DMS", unchanged),
    unary(token::degrees, Step::postfix, "degrees", fromUnit<AngleUnit::degrees>),
    unary({0xAB}, Step::postfix, "factorial", factorial, bounded),
    unary({0xAC}, Step::postfix, "radians", fromUnit<AngleUnit::radians>),
    unary({0xBC}, Step::postfix, "gradians", fromUnit<AngleUnit::gradians>),

    unary({0xA5}, Step::prefix, "power of e", ofReal<powerOfE>, bounded),
    unary({0xB1}, Step::prefix, "arc sinh", ofReal<std::asinh>, bounded),
    unary({0xB2}, Step::prefix, "arc cosh", ofReal<std::acosh>, bounded),
    unary({0xB3}, Step::prefix, "arc tanh", ofReal<std::atanh>, bounded),
    unary({0xB5}, Step::prefix, "power of 10", ofReal<powerOfTen>, bounded),
    unary({0xB7}, Step::prefix, "Neg", negatedBits),

    binary({0x7F, 0x54}, Step::combination, "angle", byAngle, bounded),
    binary({0x7F, 0x55}, Step::combination, "angle", byAngle, bounded),
    binary({0x88}, Step::combination, "permutations", permutations, bounded),
    binary({0x98}, Step::combination, "combinations", combinations, bounded),

    binary({0x8E}, Step::multiplication, "Mod", modulo, bounded),

    binary({0x7F, 0xB4}, Step::logicalOr, "Xor", exclusive),
    binary({0x8A}, Step::logicalOr, "xnor", bitsAlike),
    binary({0x9A}, Step::logicalOr, "xor", bitsOfOne),
};
static_assert(stepsRise(rows));

}  // namespace

std::span<const OperatorRow> numberRows() { return rows; }

}  // namespace numalink
