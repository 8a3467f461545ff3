// Straight lines and polynomials by normal equations in x moved to its middle and scaled to -1 to 1; what has no such
// equations by damped steps toward the least squares.
#include "emulator/numerics/regression.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "emulator/numerics/linear_algebra.h"
#include "emulator/numerics/sample_statistics.h"

namespace numalink {

namespace {

using Real = long double;
using Coefficients = std::vector<Real>;
constexpr double none = std::numeric_limits<double>::quiet_NaN();

struct Data {
    std::vector<Real> x, y, weight;  // weights above 0 alone
    bool (*goesOn)() = nullptr;

    bool isStopped() const { return goesOn != nullptr && !goesOn(); }

    std::size_t size() const { return x.size(); }
    Real total() const {
        Real sum = 0;
        for (const Real each : weight) sum += each;
        return sum;
    }
};

Data dataOf(const Points &points) {
    Data data;
    for (std::size_t i = 0; i < points.x.size(); i++) {
        if (!(points.weight(i) > 0)) continue;
        data.x.push_back(points.x[i]);
        data.y.push_back(points.y[i]);
        data.weight.push_back(points.weight(i));
    }
    return data;
}

// False where a number isn't above 0.
bool takeLogarithms(std::vector<Real> &values) {
    for (Real &value : values) {
        if (!(value > 0)) return false;
        value = std::log(value);
    }
    return true;
}

std::size_t distinctCount(std::vector<Real> values) {
    std::ranges::sort(values);
    return static_cast<std::size_t>(std::unique(values.begin(), values.end()) - values.begin());
}

// The least squares of a weighted sum of functions; basis fills in the functions' values at x. Empty where they don't
// decide it.
template <typename Basis>
Coefficients leastSquares(const Data &data, std::size_t count, const Basis &basis) {
    std::vector<Real> matrix(count * count), vector(count), values(count);
    for (std::size_t i = 0; i < data.size(); i++) {
        basis(data.x[i], values);
        for (std::size_t row = 0; row < count; row++) {
            const Real weighted = data.weight[i] * values[row];
            vector[row] += weighted * data.y[i];
            for (std::size_t column = 0; column < count; column++)
                matrix[row * count + column] += weighted * values[column];
        }
    }
    return solveLinear(matrix, vector) ? vector : Coefficients{};
}

// What adds less to the values than a double can tell is left of the elimination, and would be a curve's second root.
void clearNoise(Coefficients &scaled) {
    constexpr Real noise = 1e-16L;
    Real largest = 0;
    for (const Real each : scaled) largest = std::max(largest, std::fabs(each));
    for (Real &each : scaled) {
        if (std::fabs(each) < noise * largest) each = 0;
    }
}

// From the constant on.
Coefficients fitPolynomial(const Data &data, std::size_t degree) {
    if (distinctCount(data.x) <= degree) return {};
    const auto [least, most] = std::ranges::minmax(data.x);
    const Real middle = (least + most) / 2;
    const Real scale = most > least ? (most - least) / 2 : 1;
    Coefficients scaled = leastSquares(data, degree + 1, [&](Real x, std::vector<Real> &values) {
        Real power = 1;
        for (Real &value : values) {
            value = power;
            power *= (x - middle) / scale;
        }
    });
    if (scaled.empty()) return {};
    clearNoise(scaled);
    // By Horner's rule on polynomials: result times (x - middle) / scale, plus the next coefficient.
    Coefficients result;
    for (std::size_t k = scaled.size(); k-- > 0;) {
        result.insert(result.begin(), 0);
        for (std::size_t i = 0; i < result.size(); i++) {
            const Real next = i + 1 < result.size() ? result[i + 1] : 0;
            result[i] = (result[i] - middle * next) / scale;
        }
        result[0] += scaled[k];
    }
    return result;
}

Real valueAt(const Coefficients &polynomial, Real x) {
    Real value = 0;
    for (std::size_t k = polynomial.size(); k-- > 0;) value = value * x + polynomial[k];
    return value;
}

// The sum of the squares that a curve leaves, and that which y has about its mean.
template <typename Curve>
void judge(Regression &result, const Data &data, std::size_t parameters, const Curve &curve) {
    Real mean = 0;
    for (std::size_t i = 0; i < data.size(); i++) mean += data.weight[i] * data.y[i];
    mean /= data.total();
    Real left = 0, whole = 0;
    for (std::size_t i = 0; i < data.size(); i++) {
        const Real residual = data.y[i] - curve(data.x[i]), deviation = data.y[i] - mean;
        left += data.weight[i] * residual * residual;
        whole += data.weight[i] * deviation * deviation;
    }
    const Real freedom = data.total() - static_cast<Real>(parameters);
    result.determination = static_cast<double>(whole > 0 ? 1 - left / whole : 1);
    result.meanSquareError = freedom > 0 ? static_cast<double>(left / freedom) : 0;
}

// The correlation by its own sums: the root of the determination would lose the digits of a small one.
void judgeLine(Regression &result, const Data &data, const Coefficients &line) {
    judge(result, data, 2, [&](Real x) { return valueAt(line, x); });
    Real meanX = 0, meanY = 0;
    for (std::size_t i = 0; i < data.size(); i++) {
        meanX += data.weight[i] * data.x[i];
        meanY += data.weight[i] * data.y[i];
    }
    meanX /= data.total();
    meanY /= data.total();
    Real ofX = 0, ofY = 0, ofBoth = 0;
    for (std::size_t i = 0; i < data.size(); i++) {
        const Real x = data.x[i] - meanX, y = data.y[i] - meanY;
        ofX += data.weight[i] * x * x;
        ofY += data.weight[i] * y * y;
        ofBoth += data.weight[i] * x * y;
    }
    const Real correlation = ofY > 0 ? ofBoth / std::sqrt(ofX * ofY) : 0;
    result.correlation = static_cast<double>(correlation);
    result.determination = static_cast<double>(correlation * correlation);
    result.hasCorrelation = true;
}

bool fitStraight(Regression &result, Data &data) {
    const Coefficients line = fitPolynomial(data, 1);
    if (line.empty()) return false;
    judgeLine(result, data, line);
    result.coefficients = {static_cast<double>(line[1]), static_cast<double>(line[0])};
    return true;
}

// Those that are straight lines of logarithms: a is the constant or its power of e, b the slope.
bool fitLogarithms(Regression &result, Data &data) {
    const bool isOfX = result.kind != RegressionKind::exponential;
    const bool isOfY = result.kind != RegressionKind::logarithmic;
    if ((isOfX && !takeLogarithms(data.x)) || (isOfY && !takeLogarithms(data.y))) return false;
    const Coefficients line = fitPolynomial(data, 1);
    if (line.empty()) return false;
    judgeLine(result, data, line);
    result.coefficients = {static_cast<double>(isOfY ? std::exp(line[0]) : line[0]), static_cast<double>(line[1])};
    return true;
}

bool fitPowers(Regression &result, Data &data) {
    const std::size_t degree = result.kind == RegressionKind::quadratic ? 2
                               : result.kind == RegressionKind::cubic   ? 3
                                                                        : 4;
    const Coefficients polynomial = fitPolynomial(data, degree);
    if (polynomial.empty()) return false;
    judge(result, data, degree + 1, [&](Real x) { return valueAt(polynomial, x); });
    for (std::size_t k = 0; k <= degree; k++) result.coefficients[k] = static_cast<double>(polynomial[degree - k]);
    return true;
}

// Three groups by rising x, the outer ones alike and the middle one never smaller by more than one. A point counts as
// often as its weight says, cut to a whole number.
bool fitMedians(Regression &result, Data &data) {
    std::vector<double> x, y;
    const std::vector<double> places(data.x.begin(), data.x.end());
    for (const std::size_t i : risingOrder(places)) {
        constexpr Real pointLimit = 65536;
        const auto times = static_cast<std::size_t>(std::min(data.weight[i], pointLimit));
        if (static_cast<Real>(x.size() + times) > pointLimit) return false;
        x.insert(x.end(), times, static_cast<double>(data.x[i]));
        y.insert(y.end(), times, static_cast<double>(data.y[i]));
    }
    const std::size_t count = x.size();
    if (count < 3) return false;
    const std::size_t outer = count / 3 + (count % 3 == 2 ? 1 : 0);
    const std::size_t first[] = {0, outer, count - outer}, sizes[] = {outer, count - 2 * outer, outer};
    for (std::size_t group = 0; group < 3; group++) {
        result.medians[2 * group] = medianOf({std::span(x).subspan(first[group], sizes[group]), {}});
        result.medians[2 * group + 1] = medianOf({std::span(y).subspan(first[group], sizes[group]), {}});
    }
    const auto &[x1, y1, x2, y2, x3, y3] = result.medians;
    if (x1 == x3) return false;
    const Real slope = (static_cast<Real>(y3) - y1) / (static_cast<Real>(x3) - x1);
    const Real constant = (static_cast<Real>(y1) + y2 + y3 - slope * (static_cast<Real>(x1) + x2 + x3)) / 3;
    judge(result, data, 2, [&](Real place) { return slope * place + constant; });
    result.coefficients = {static_cast<double>(slope), static_cast<double>(constant)};
    return true;
}

// A curve with parameters that enter in other ways than as factors. value gives the curve at x and its slopes in the
// direction of each parameter.
struct FreeCurve {
    std::size_t parameters;
    Real (*value)(const Coefficients &parameters, Real x, std::span<Real> slopes);
};

Real squaresLeft(const FreeCurve &curve, const Data &data, const Coefficients &parameters) {
    std::vector<Real> slopes(curve.parameters);
    Real sum = 0;
    for (std::size_t i = 0; i < data.size(); i++) {
        const Real residual = data.y[i] - curve.value(parameters, data.x[i], slopes);
        sum += data.weight[i] * residual * residual;
    }
    return sum;
}

// One step: the normal equations of the slopes, their diagonal raised by damping. Empty where they decide nothing.
Coefficients stepFrom(const FreeCurve &curve, const Data &data, const Coefficients &parameters, Real damping) {
    const std::size_t n = curve.parameters;
    std::vector<Real> matrix(n * n), vector(n), slopes(n);
    for (std::size_t i = 0; i < data.size(); i++) {
        const Real residual = data.y[i] - curve.value(parameters, data.x[i], slopes);
        for (std::size_t row = 0; row < n; row++) {
            vector[row] += data.weight[i] * slopes[row] * residual;
            for (std::size_t column = 0; column < n; column++)
                matrix[row * n + column] += data.weight[i] * slopes[row] * slopes[column];
        }
    }
    for (std::size_t k = 0; k < n; k++) matrix[k * n + k] *= 1 + damping;
    return solveLinear(matrix, vector) ? vector : Coefficients{};
}

// Close to the least squares they no longer tell steps apart, while full steps still shrink, down to the last digits.
void polish(const FreeCurve &curve, const Data &data, Coefficients &parameters, Real left) {
    constexpr int stepLimit = 30;
    constexpr Real rounding = 1e-12L;
    Real lastSize = std::numeric_limits<Real>::infinity();
    for (int step = 0; step < stepLimit && !data.isStopped(); step++) {
        const Coefficients change = stepFrom(curve, data, parameters, 0);
        Coefficients next = parameters;
        Real size = 0;
        for (std::size_t k = 0; k < change.size(); k++) {
            next[k] += change[k];
            size += std::fabs(change[k]);
        }
        const bool shrinks = !change.empty() && size < lastSize / 2;
        if (!shrinks || !(squaresLeft(curve, data, next) <= left * (1 + rounding))) return;
        parameters = next;
        lastSize = size;
    }
}

// Lowers the squares that are left until no step does; what is left then, or infinity.
Real refine(const FreeCurve &curve, const Data &data, Coefficients &parameters) {
    constexpr int stepLimit = 200;
    constexpr Real leastDamping = 1e-18L, mostDamping = 1e12L;
    Real left = squaresLeft(curve, data, parameters);
    if (!std::isfinite(left)) return std::numeric_limits<Real>::infinity();
    Real damping = 1e-3L;
    for (int step = 0; step < stepLimit && damping < mostDamping && !data.isStopped(); step++) {
        const Coefficients change = stepFrom(curve, data, parameters, damping);
        Coefficients next = parameters;
        for (std::size_t k = 0; k < change.size(); k++) next[k] += change[k];
        const Real leftThen = change.empty() ? left : squaresLeft(curve, data, next);
        if (leftThen < left) {
            parameters = next;
            left = leftThen;
            damping = std::max(damping / 10, leastDamping);
        } else {
            damping *= 10;
        }
    }
    polish(curve, data, parameters, left);
    return left;
}

bool finishFree(Regression &result, const FreeCurve &curve, const Data &data, const Coefficients &best) {
    if (best.empty() || data.isStopped()) return false;
    std::vector<Real> slopes(curve.parameters);
    judge(result, data, curve.parameters, [&](Real x) { return curve.value(best, x, slopes); });
    for (std::size_t k = 0; k < best.size(); k++) {
        if (!std::isfinite(best[k])) return false;
        result.coefficients[k] = static_cast<double>(best[k]);
    }
    return true;
}

Real sineCurve(const Coefficients &p, Real x, std::span<Real> slopes) {
    const Real sine = std::sin(p[1] * x + p[2]), cosine = std::cos(p[1] * x + p[2]);
    slopes[0] = sine;
    slopes[1] = p[0] * x * cosine;
    slopes[2] = p[0] * cosine;
    slopes[3] = 1;
    return p[0] * sine + p[3];
}

// With b given, the curve is a sum of sine, cosine and a constant. Its a, b, c, d, or none.
Coefficients sineWithPace(const Data &data, Real pace) {
    const Coefficients sum = leastSquares(data, 3, [pace](Real x, std::vector<Real> &values) {
        values = {std::sin(pace * x), std::cos(pace * x), 1};
    });
    if (sum.empty()) return {};
    return {std::hypot(sum[0], sum[1]), pace, std::atan2(sum[1], sum[0]), sum[2]};
}

bool fitSine(Regression &result, Data &data) {
    constexpr std::size_t paceLimit = 4000, startLimit = 5;
    const std::size_t count = distinctCount(data.x);
    if (count < 5) return false;
    const auto [least, most] = std::ranges::minmax(data.x);
    const FreeCurve curve{4, sineCurve};
    // From an eighth of half a period over all points to half a period from point to point.
    const std::size_t paces = std::min(8 * (count - 1), paceLimit);
    const Real step =
        std::numbers::pi_v<Real> * static_cast<Real>(count - 1) / (most - least) / static_cast<Real>(paces);
    std::vector<std::pair<Real, Coefficients>> starts;
    for (std::size_t i = 1; i <= paces && !data.isStopped(); i++) {
        const Coefficients start = sineWithPace(data, step * static_cast<Real>(i));
        if (!start.empty()) starts.emplace_back(squaresLeft(curve, data, start), start);
    }
    const auto byWhatIsLeft = [](const auto &a, const auto &b) { return a.first < b.first; };
    std::ranges::stable_sort(starts, byWhatIsLeft);
    if (starts.size() > startLimit) starts.resize(startLimit);
    for (auto &[left, parameters] : starts) left = refine(curve, data, parameters);
    const auto best = std::ranges::min_element(starts, byWhatIsLeft);
    return best != starts.end() && finishFree(result, curve, data, best->second);
}

Real logisticCurve(const Coefficients &p, Real x, std::span<Real> slopes) {
    const Real power = std::exp(-p[1] * x), below = 1 + p[0] * power;
    const Real bySquare = p[2] / (below * below);
    slopes[0] = -bySquare * power;
    slopes[1] = bySquare * p[0] * x * power;
    slopes[2] = 1 / below;
    return p[2] / below;
}

// With c given, ln(c / y - 1) is a straight line.
bool fitLogistic(Regression &result, Data &data) {
    if (distinctCount(data.x) < 3) return false;
    const Real largest = std::ranges::max(data.y);
    if (!(largest > 0)) return false;
    const FreeCurve curve{3, logisticCurve};
    Coefficients best;
    Real leastLeft = std::numeric_limits<Real>::infinity();
    for (const Real factor : {1.001L, 1.01L, 1.1L, 1.5L, 3.0L, 10.0L}) {
        Data logits = data;
        for (std::size_t i = 0; i < data.size(); i++) {
            const Real ratio = factor * largest / data.y[i] - 1;
            logits.y[i] = ratio > 0 ? std::log(ratio) : 0;
            if (!(ratio > 0)) logits.weight[i] = 0;
        }
        const Coefficients line = fitPolynomial(logits, 1);
        if (line.empty()) continue;
        Coefficients parameters = {std::exp(line[0]), -line[1], factor * largest};
        const Real left = refine(curve, data, parameters);
        if (left < leastLeft) {
            leastLeft = left;
            best = parameters;
        }
    }
    return finishFree(result, curve, data, best);
}

struct KindRow {
    bool (*fit)(Regression &result, Data &data);
    double (*at)(const std::array<double, 5> &c, double x);
    double (*inverse)(const std::array<double, 5> &c, double y);
};

using C = std::array<double, 5>;

template <int degree>
double polynomialAt(const C &c, double x) {
    double value = 0;
    for (std::size_t k = 0; k <= degree; k++) value = value * x + c[k];
    return value;
}
double lineInverse(const C &c, double y) { return c[0] == 0 ? none : (y - c[1]) / c[0]; }
double noInverse(const C &, double) { return none; }

// Without the loss of digits where the two roots differ much.
double quadraticInverse(const C &c, double y) {
    if (c[0] == 0) return lineInverse({c[1], c[2]}, y);
    const double root = std::sqrt(c[1] * c[1] - 4 * c[0] * (c[2] - y));
    const double half = -(c[1] + std::copysign(root, c[1])) / 2;
    if (half == 0) return 0;
    return std::max(half / c[0], (c[2] - y) / half);
}

constexpr KindRow kinds[] = {
    {fitStraight, polynomialAt<1>, lineInverse},
    {fitMedians, polynomialAt<1>, lineInverse},
    {fitPowers, polynomialAt<2>, quadraticInverse},
    {fitPowers, polynomialAt<3>, noInverse},
    {fitPowers, polynomialAt<4>, noInverse},
    {fitLogarithms, [](const C &c, double x) { return c[0] + c[1] * std::log(x); },
     [](const C &c, double y) { return std::exp((y - c[0]) / c[1]); }},
    {fitLogarithms, [](const C &c, double x) { return c[0] * std::exp(c[1] * x); },
     [](const C &c, double y) { return std::log(y / c[0]) / c[1]; }},
    {fitLogarithms, [](const C &c, double x) { return c[0] * std::pow(x, c[1]); },
     [](const C &c, double y) { return std::pow(y / c[0], 1 / c[1]); }},
    {fitSine, [](const C &c, double x) { return c[0] * std::sin(c[1] * x + c[2]) + c[3]; }, noInverse},
    {fitLogistic, [](const C &c, double x) { return c[2] / (1 + c[0] * std::exp(-c[1] * x)); },
     [](const C &c, double y) { return std::log(c[0] * y / (c[2] - y)) / c[1]; }},
};

const KindRow &rowOf(RegressionKind kind) { return kinds[static_cast<std::size_t>(kind)]; }

}  // namespace

std::optional<Regression> fitCurve(RegressionKind kind, const Points &points, bool (*goesOn)()) {
    Data data = dataOf(points);
    data.goesOn = goesOn;
    const auto areFinite = [](const std::vector<Real> &values) {
        return std::ranges::all_of(values, [](Real value) { return std::isfinite(value); });
    };
    if (data.size() == 0 || !areFinite(data.x) || !areFinite(data.y)) return std::nullopt;
    Regression result;
    result.kind = kind;
    if (!rowOf(kind).fit(result, data)) return std::nullopt;
    const auto isFinite = [](double coefficient) { return std::isfinite(coefficient); };
    if (!std::ranges::all_of(result.coefficients, isFinite)) return std::nullopt;
    return result;
}

double curveAt(const Regression &curve, double x) { return rowOf(curve.kind).at(curve.coefficients, x); }

double curveInverse(const Regression &curve, double y) { return rowOf(curve.kind).inverse(curve.coefficients, y); }

}  // namespace numalink
