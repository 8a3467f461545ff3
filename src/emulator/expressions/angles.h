// Angles in the units of the calculators, and their functions. Pure; any thread.
#pragma once

#include <numbers>

#include "emulator/machine/machine.h"

namespace numalink {

inline double radiansPerUnit(AngleUnit unit) {
    if (unit == AngleUnit::radians) return 1;
    return std::numbers::pi / (unit == AngleUnit::degrees ? 180 : 200);
}

// Exact at whole quarters of a turn in degrees and gradians; the library's in radians.
double sineOf(double angle, AngleUnit unit);
double cosineOf(double angle, AngleUnit unit);
double tangentOf(double angle, AngleUnit unit);

}  // namespace numalink
