// Sine, cosine and tangent in the units of the calculators.
#include "emulator/expressions/angles.h"

#include <cmath>

namespace numalink {

namespace {

double quarterOf(AngleUnit unit) { return unit == AngleUnit::degrees ? 90 : 100; }

// The quarters of the angle, 0 to 3, where it is whole quarters; else -1.
int wholeQuarters(double angle, AngleUnit unit) {
    if (unit == AngleUnit::radians) return -1;
    const double quarters = std::fmod(angle / quarterOf(unit), 4);
    if (std::trunc(quarters) != quarters) return -1;
    return static_cast<int>(quarters < 0 ? quarters + 4 : quarters);
}

constexpr double sines[] = {0, 1, 0, -1, 0};

}  // namespace

double sineOf(double angle, AngleUnit unit) {
    const int quarters = wholeQuarters(angle, unit);
    return quarters < 0 ? std::sin(angle * radiansPerUnit(unit)) : sines[quarters];
}

double cosineOf(double angle, AngleUnit unit) {
    const int quarters = wholeQuarters(angle, unit);
    return quarters < 0 ? std::cos(angle * radiansPerUnit(unit)) : sines[quarters + 1];
}

double tangentOf(double angle, AngleUnit unit) {
    const int quarters = wholeQuarters(angle, unit);
    return quarters < 0 ? std::tan(angle * radiansPerUnit(unit)) : sines[quarters] / sines[quarters + 1];
}

}  // namespace numalink
