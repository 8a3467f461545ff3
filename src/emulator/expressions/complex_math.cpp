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
bool isRealFromZero(ComplexValue a) { return a.im == 0 && a.re >= 0; }

}  // namespace

ComplexValue complexAdd(ComplexValue a, ComplexValue b) { return complexMake(a.re + b.re, a.im + b.im); }

ComplexValue complexSub(ComplexValue a, ComplexValue b) { return complexMake(a.re - b.re, a.im - b.im); }

ComplexValue complexMul(ComplexValue a, ComplexValue b) {
    return complexMake(a.re * b.re - a.im * b.im, a.im * b.re + a.re * b.im);
}

ComplexValue complexSquare(ComplexValue a) { return complexMake(a.re * a.re - a.im * a.im, 2 * a.im * a.re); }

ComplexValue complexAbs(ComplexValue a) { return complexReal(magnitudeOf(a)); }

ComplexValue complexArg(ComplexValue a) { return complexReal(angleOf(a)); }

ComplexValue complexDiv(ComplexValue a, ComplexValue b) {
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
