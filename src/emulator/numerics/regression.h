// Curves through weighted points by least squares, and the median-median line. No state; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace numalink {

enum class RegressionKind : std::uint8_t {
    linear,       // a x + b
    medianLine,   // a x + b through the medians of three groups
    quadratic,    // a x^2 + b x + c
    cubic,        // a x^3 + ... + d
    quartic,      // a x^4 + ... + e
    logarithmic,  // a + b ln x
    exponential,  // a e^(b x)
    power,        // a x^b
    sinusoidal,   // a sin(b x + c) + d, a and b from 0 on, x in radians
    logistic      // c / (1 + a e^(-b x))
};

struct Regression {
    RegressionKind kind = RegressionKind::linear;
    std::array<double, 5> coefficients{};  // a to e, 0 where the kind has fewer
    std::array<double, 6> medians{};       // of the median line's groups: x1, y1, x2, y2, x3, y3
    double correlation = 0;                // r; 0 where hasCorrelation is false
    double determination = 0;              // r squared, or the share of the deviations that the curve explains
    double meanSquareError = 0;            // of what is fitted to, so of ln y for the exponential and the power
    bool hasCorrelation = false;           // the kinds that come down to a straight line
};

// Points of one length; no weights: each counts once. Weights are from 0 on.
struct Points {
    std::span<const double> x, y;
    std::span<const double> weights;

    double weight(std::size_t i) const { return weights.empty() ? 1 : weights[i]; }
};

// None where the points don't decide the curve (too few, x all alike) or have no logarithm that the kind needs. The
// straight and the polynomial kinds are right to some 1e-13 of the coefficients' own condition; sinusoidal and logistic
// are the best of several starts, refined until nothing changes, to some 1e-12. Of the sinusoidal ones, b is looked for
// up to half a period between two neighbours on average. These two ask goesOn ahead of each walk over the points; false
// ends the search with none.
std::optional<Regression> fitCurve(RegressionKind kind, const Points &points, bool (*goesOn)() = nullptr);

double curveAt(const Regression &curve, double x);

// The x at which the curve has this y, the larger of two; no number where there is none, or the kind has no inverse
// (cubic, quartic, sinusoidal).
double curveInverse(const Regression &curve, double y);

}  // namespace numalink
