// Derivatives, integrals, roots and extremes of a real function, as pure numerics: no cells, no reports. Each asks the
// function a bounded number of times. Any thread.
#pragma once

#include <functional>

namespace numalink {

// y becomes the value at x, or what isn't finite where there is none. False: nobody waits for the result any more, and
// the caller ends at once.
using RealFunction = std::function<bool(double x, double &y)>;

enum class CalculusEnd { found, none, stopped };
struct CalculusResult {
    CalculusEnd end = CalculusEnd::none;
    double x = 0;  // of a root or an extreme, else unused
    double y = 0;  // the value: of the derivative, the integral, or the function at x
};

// Central differences of shrinking steps, extrapolated to step 0. Of smooth functions 1E-11 and 1E-8 of the result (or,
// near a zero of it, of the function's changes around). Found if the estimated error is below 1E-5; at most 300 values.
CalculusResult derivative(const RealFunction &function, double at);
CalculusResult secondDerivative(const RealFunction &function, double at);

// From a to b, which may be the lower one. Halves where the 7 and 15 point rules differ most; 1E-13 of the integral of
// the absolute value, and found if the estimate is below 1E-5 of that. A single point without a value is passed by.
// At most 8000 values.
CalculusResult integral(const RealFunction &function, double a, double b);

// A place from low to high where the function is 0: by Newton's way from start, else the change of sign nearest to it.
// To the last digits of x; of a root where the sign doesn't change, as near as the function's own digits tell it. At
// most 3000 values.
CalculusResult root(const RealFunction &function, double start, double low, double high);

// The lowest place from low to high, the ends among them: of 65 places the lowest, and from there to 1E-10 of x where
// the function is smooth, else 1E-8. At most 1000 values.
CalculusResult minimum(const RealFunction &function, double low, double high);

}  // namespace numalink
