// Arithmetic on ComplexValue, in exactly this order of operations: programs see the last bits.
#include "emulator/expressions/complex_math.h"

#include <cmath>

namespace numalink {

namespace {

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

bool isRealFromZero(ComplexValue a) { return a.im == 0 && a.re >= 0; }

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
    if (isRealFromZero(a) && isRealFromZero(b)) return complexReal(std::pow(a.re, b.re));
    return polar(std::pow(magnitudeOf(a), magnitudeOf(b)), angleOf(a) * angleOf(b));
}

std::int32_t wrappedInteger(double value) {
    if (!std::isfinite(value)) return 0;
    const double low = std::fmod(std::trunc(value), 4294967296.0);  // exact
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::int64_t>(low)));
}

}  // namespace numalink
