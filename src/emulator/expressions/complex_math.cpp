// Arithmetic on ComplexValue, in exactly this order of operations: programs see the last bits.
#include "emulator/expressions/complex_math.h"

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>

namespace numalink {

namespace {

using std::numbers::pi;

double magnitudeOf(ComplexValue a) { return std::sqrt(a.re * a.re + a.im * a.im); }
double angleOf(ComplexValue a) { return std::atan2(a.im, a.re); }
ComplexValue polar(double magnitude, double angle) {
    return complexMake(magnitude * std::cos(angle), magnitude * std::sin(angle));
}

// Real, without the sign of a negative zero, and of a size whose square is neither lost nor infinite: its magnitude is
// then the number itself without its sign, to the bit.
bool isPlain(ComplexValue a) {
    constexpr double smallest = 1e-150, largest = 1e150;
    const double size = std::abs(a.re);
    return a.im == 0 && !std::signbit(a.im) && size > smallest && size < largest;
}

// What magnitudes and angles give for plain operands: where one is negative, the residue of sin(pi) stays in im.
ComplexValue plainQuotient(double a, double b) {
    static const double sineOfPi = std::sin(std::atan2(0.0, -1.0));
    const double magnitude = std::abs(a) / std::abs(b);
    if (std::signbit(a) == std::signbit(b)) return complexReal(magnitude);
    return complexMake(-magnitude, std::signbit(a) ? magnitude * sineOfPi : magnitude * -sineOfPi);
}

bool isReal(ComplexValue a) { return a.im == 0; }
bool isWhole(ComplexValue a) { return isReal(a) && std::trunc(a.re) == a.re; }
bool isOdd(ComplexValue a) { return isWhole(a) && std::fmod(a.re, 2) != 0; }

ComplexValue powerOfProducts(ComplexValue a, double exponent) {
    ComplexValue result = complexReal(1);
    for (auto bits = static_cast<unsigned>(std::fabs(exponent)); bits != 0; bits >>= 1) {
        if ((bits & 1) != 0) result = complexMul(result, a);
        a = complexSquare(a);
    }
    if (exponent >= 0) return result;
    const std::complex<double> inverse = 1.0 / std::complex(result.re, result.im);  // no residue, unlike by the angle
    return complexMake(inverse.real(), inverse.imag());
}

// Of a negative real base. The turns of pi that make one of the two parts 0 make it so exactly.
ComplexValue powerOfNegative(double base, double exponent) {
    const double magnitude = std::pow(-base, exponent);
    const double turns = std::fmod(exponent, 2);
    if (std::fmod(turns, 1) == 0) return complexReal(turns == 0 ? magnitude : -magnitude);
    if (std::fabs(turns) == 0.5) return complexMake(0, std::copysign(magnitude, turns));
    if (std::fabs(turns) == 1.5) return complexMake(0, -std::copysign(magnitude, turns));
    return polar(magnitude, pi * turns);
}

ComplexValue powerByLogarithm(ComplexValue a, ComplexValue b) {
    if (a.re == 0 && a.im == 0 && b.re > 0) return {};
    const double logarithm = std::log(magnitudeOf(a));
    const double angle = isReal(a) ? (a.re < 0 ? pi : 0) : angleOf(a);  // the sign of a zero part doesn't count
    return polar(std::exp(b.re * logarithm - b.im * angle), b.im * logarithm + b.re * angle);
}

}  // namespace

ComplexValue complexSquare(ComplexValue a) { return complexMake(a.re * a.re - a.im * a.im, 2 * a.im * a.re); }

ComplexValue complexAbs(ComplexValue a) { return complexReal(magnitudeOf(a)); }

ComplexValue complexArg(ComplexValue a) { return complexReal(angleOf(a)); }

ComplexValue complexDiv(ComplexValue a, ComplexValue b) {
    if (isPlain(a) && isPlain(b)) return plainQuotient(a.re, b.re);
    return polar(magnitudeOf(a) / magnitudeOf(b), angleOf(a) - angleOf(b));
}

ComplexValue complexInverse(ComplexValue a) { return polar(1 / magnitudeOf(a), -angleOf(a)); }

ComplexValue complexPow(ComplexValue a, ComplexValue b) {
    if (isReal(a) && isReal(b)) return a.re < 0 ? powerOfNegative(a.re, b.re) : complexReal(std::pow(a.re, b.re));
    if (isWhole(b) && std::fabs(b.re) <= powerByProducts) return powerOfProducts(a, b.re);
    return powerByLogarithm(a, b);
}

ComplexValue complexRoot(ComplexValue index, ComplexValue a) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    if (index.re == 0 && index.im == 0) return complexReal(none);
    ComplexValue exponent = complexInverse(index);
    if (isReal(index)) exponent.im = 0;  // a negative index leaves a residue there
    if (isReal(a) && a.re < 0 && isOdd(index)) return complexReal(-std::pow(-a.re, exponent.re));
    return complexPow(a, exponent);
}

std::int32_t wrappedInteger(double value) {
    if (!std::isfinite(value)) return 0;
    const double low = std::fmod(std::trunc(value), 4294967296.0);  // exact
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::int64_t>(low)));
}

}  // namespace numalink
