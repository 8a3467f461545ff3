#include "emulator/expressions/calculus.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <queue>

namespace numalink {

namespace {

constexpr double goodEnough = 1e-5;  // of its scale: an estimated error above it is no result
constexpr double smallest = std::numeric_limits<double>::min();
constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

// What walks ask through: a stop is kept, and values from then on are none.
class Asked {
public:
    explicit Asked(const RealFunction &asked) : function(asked) {}
    double operator()(double x) {
        double y = nothing;
        if (!isStopped && !function(x, y)) isStopped = true;
        return isStopped || !std::isfinite(y) ? nothing : y;
    }
    CalculusResult result(bool isFound, double x, double y) const {
        if (isStopped) return {CalculusEnd::stopped, 0, 0};
        return {isFound && std::isfinite(y) ? CalculusEnd::found : CalculusEnd::none, x, y};
    }
    bool isStopped = false;

private:
    const RealFunction &function;
};

struct Estimate {
    double value = 0;
    double error = std::numeric_limits<double>::infinity();
    double scale = 0;  // of the differences that it was made of
};

// The difference quotient of a step; nothing where the function has no value, its scale else.
using Quotient = double (*)(Asked &, double at, double step, double middle, double &scale);

double firstQuotient(Asked &asked, double at, double step, double /*middle*/, double &scale) {
    const double right = asked(at + step), left = asked(at - step);
    scale = (std::fabs(right) + std::fabs(left)) / (2 * step);
    return (right - left) / (at + step - (at - step));
}

double secondQuotient(Asked &asked, double at, double step, double middle, double &scale) {
    const double right = asked(at + step), left = asked(at - step);
    scale = (std::fabs(right) + 2 * std::fabs(middle) + std::fabs(left)) / (step * step);
    return (right - middle + (left - middle)) / (step * step);
}

// Extrapolates quotients of even error terms by the table of Neville; ends where the error grows again.
Estimate extrapolated(Asked &asked, double at, double firstStep, double middle, Quotient quotient) {
    constexpr int rows = 10;
    constexpr double shrink = 1.5;
    double table[rows][rows];
    Estimate best;
    double step = firstStep;
    for (int row = 0; row < rows; row++) {
        double scale = 0;
        table[0][row] = quotient(asked, at, step, middle, scale);
        if (!std::isfinite(table[0][row])) return row == 0 ? Estimate{} : best;
        if (row == 0) best.scale = scale;
        double power = 1;
        for (int column = 1; column <= row; column++) {
            power *= shrink * shrink;
            const double better = table[column - 1][row], coarser = table[column - 1][row - 1];
            table[column][row] = better + (better - coarser) / (power - 1);
            const double error =
                std::max(std::fabs(table[column][row] - better), std::fabs(table[column][row] - coarser));
            if (error > best.error) continue;
            best.error = error;
            best.value = table[column][row];
        }
        if (row > 1 && std::fabs(table[row][row] - table[row - 1][row - 1]) > 8 * best.error) break;
        step /= shrink;
    }
    return best;
}

// From steps of several sizes the result of the smallest error, so that neither a wide nor a narrow shape misleads.
CalculusResult differential(const RealFunction &function, double at, Quotient quotient) {
    constexpr double steps[] = {0.5, 0.1, 0.02, 0.002};
    constexpr int halvings = 12;
    Asked asked(function);
    const double middle = asked(at);
    const double unit = std::fabs(at) > 1 ? std::fabs(at) : 1;
    Estimate best;
    const auto consider = [&](double step) {
        const Estimate next = extrapolated(asked, at, step, middle, quotient);
        if (next.error < best.error) best = next;
    };
    if (!std::isnan(middle)) {
        for (const double step : steps) consider(step * unit);
        // A function that has no value so far away (ln near 0).
        double step = steps[3] * unit;
        for (int i = 0; i < halvings && !std::isfinite(best.error) && !asked.isStopped; i++) consider(step /= 4);
    }
    const double scale = std::max(std::fabs(best.value), best.scale * 1e-3);
    return asked.result(best.error <= goodEnough * std::max(scale, smallest), at, best.value);
}

// The nodes and weights of the 15 point rule from the middle outward, and of the 7 point rule on every second node.
constexpr double nodes[] = {0.0,
                            0.2077849550078984676,
                            0.40584515137739716691,
                            0.58608723546769113029,
                            0.74153118559939443986,
                            0.86486442335976907279,
                            0.94910791234275852453,
                            0.99145537112081263921};
constexpr double weights[] = {0.20948214108472782801,  0.20443294007529889241, 0.19035057806478540991,
                              0.16900472663926790283,  0.14065325971552591875, 0.10479001032225018384,
                              0.063092092629978553291, 0.022935322010529224964};
constexpr double coarseWeights[] = {0.41795918367346938776, 0.38183005050511894495, 0.2797053914892766679,
                                    0.12948496616886969327};

struct Piece {
    double a = 0, b = 0;
    double value = 0, error = 0, size = 0;  // size: the integral of the absolute value
    friend bool operator<(const Piece &left, const Piece &right) { return left.error < right.error; }
};

// A single point without a value takes that of a place beside it.
double askedBeside(Asked &asked, double x, double width) {
    const double y = asked(x);
    return std::isnan(y) ? asked(x + width * 1e-9) : y;
}

Piece measured(Asked &asked, double a, double b) {
    const double middle = (a + b) / 2, half = (b - a) / 2;
    Piece piece{a, b};
    double coarse = 0;
    for (std::size_t i = 0; i < std::size(nodes); i++) {
        const double right = askedBeside(asked, middle + half * nodes[i], half);
        const double left = i == 0 ? 0 : askedBeside(asked, middle - half * nodes[i], half);
        piece.value += weights[i] * (left + right);
        piece.size += weights[i] * (std::fabs(left) + std::fabs(right));
        if (i % 2 == 0) coarse += coarseWeights[i / 2] * (left + right);
    }
    piece.value *= half;
    piece.size *= std::fabs(half);
    piece.error = std::fabs(piece.value - coarse * half);
    // The finer rule's own error falls much faster than the difference of the two.
    if (piece.size > 0) piece.error = piece.size * std::min(1.0, std::pow(200 * piece.error / piece.size, 1.5));
    return piece;
}

// A bracket of a change of sign, narrowed to neighbouring doubles: the secant where it helps, halves where it doesn't.
CalculusResult narrowed(Asked &asked, double a, double fa, double b, double fb) {
    constexpr int passes = 200;
    const double size = std::max(std::fabs(fa), std::fabs(fb));
    bool halves = false;
    for (int i = 0; i < passes && fa != 0 && fb != 0; i++) {
        const double width = b - a;
        double x = halves ? a + width / 2 : a - fa * width / (fb - fa);
        const double least = std::numeric_limits<double>::epsilon() * std::max(std::fabs(a), std::fabs(b)) / 2;
        if (std::fabs(width) <= 2 * least + smallest) break;
        if (!halves) x = std::clamp(x, std::min(a, b) + least, std::max(a, b) - least);
        const double y = asked(x);
        if (std::isnan(y)) return asked.result(false, x, y);
        const bool staysLeft = (y < 0) == (fa < 0) && y != 0;
        (staysLeft ? a : b) = x;
        (staysLeft ? fa : fb) = y;
        halves = std::fabs(b - a) > std::fabs(width) / 2;
    }
    const bool takesA = std::fabs(fa) <= std::fabs(fb);
    const double y = takesA ? fa : fb;
    return asked.result(std::fabs(y) <= size, takesA ? a : b, y);  // at a pole the values grow
}

// Newton's way with a symmetric quotient for the slope. Nothing where it leaves the bounds or doesn't settle.
std::optional<CalculusResult> newton(Asked &asked, double start, double low, double high) {
    constexpr int passes = 100;
    double x = start, y = asked(x);
    const double first = std::fabs(y);
    double before = std::numeric_limits<double>::infinity();  // the step ahead
    for (int i = 0; i < passes && !std::isnan(y); i++) {
        if (y == 0) return asked.result(true, x, y);
        const double step = 1e-5 * std::max(std::fabs(x), 1e-3);
        const double slope = (asked(x + step) - asked(x - step)) / (x + step - (x - step));
        const double next = x - y / slope;
        if (!std::isfinite(next)) break;
        if (next < low || next > high) return {};
        const double moved = std::fabs(next - x);
        const bool settles = moved <= 4 * std::numeric_limits<double>::epsilon() * std::fabs(next);
        if (settles || (moved >= before && before <= 1e-7 * std::fabs(x))) {
            // The last place that still came nearer; it is a root if the function is small there.
            const bool isRoot = std::fabs(y) <= 1e-9 * std::max(first, std::fabs(slope * x));
            if (!isRoot) return {};
            return asked.result(true, x, y);
        }
        before = moved;
        x = next;
        y = asked(x);
    }
    // A root at 0 where the sign doesn't change is come nearer to, and never reached.
    if (std::fabs(y) <= 1e-12 * first && std::fabs(x) <= 1e-12 && asked(0) == 0) return asked.result(true, 0, 0);
    return {};
}

struct Place {
    double x = 0, y = nothing;
};

constexpr int minimumParts = 64;

// The lowest of the places that part the stretch. One without a value gives way to any other.
Place lowestOfParts(Asked &asked, double low, double high, double width) {
    Place best{low, asked(low)};
    for (int i = 1; i <= minimumParts; i++) {
        const double x = i == minimumParts ? high : low + i * width, y = asked(x);
        if (y < best.y || std::isnan(best.y)) best = {x, y};
    }
    return best;
}

// The lowest place of a stretch that falls and then rises.
Place goldenSection(Asked &asked, double a, double b, double closest) {
    const double golden = (std::sqrt(5.0) - 1) / 2;
    const auto placeAt = [&asked](double x) { return Place{x, asked(x)}; };
    Place left = placeAt(b - golden * (b - a)), right = placeAt(a + golden * (b - a));
    while (b - a > closest && !asked.isStopped) {
        if (left.y <= right.y) {
            b = right.x;
            right = left;
            left = placeAt(b - golden * (b - a));
        } else {
            a = left.x;
            left = right;
            right = placeAt(a + golden * (b - a));
        }
    }
    return left.y <= right.y ? left : right;
}

}  // namespace

CalculusResult derivative(const RealFunction &function, double at) { return differential(function, at, firstQuotient); }
CalculusResult secondDerivative(const RealFunction &function, double at) {
    return differential(function, at, secondQuotient);
}

CalculusResult integral(const RealFunction &function, double a, double b) {
    constexpr int pieceLimit = 260;
    constexpr double aim = 1e-13;
    Asked asked(function);
    std::priority_queue<Piece> pieces;
    pieces.push(measured(asked, a, b));
    double value = pieces.top().value, error = pieces.top().error, size = pieces.top().size;
    while (error > aim * size && static_cast<int>(pieces.size()) < pieceLimit && !asked.isStopped) {
        const Piece worst = pieces.top();
        const double middle = (worst.a + worst.b) / 2;
        if (middle == worst.a || middle == worst.b || std::isnan(worst.value)) break;
        pieces.pop();
        for (const Piece &half : {measured(asked, worst.a, middle), measured(asked, middle, worst.b)}) {
            value += half.value;
            error += half.error;
            size += half.size;
            pieces.push(half);
        }
        value -= worst.value;
        error -= worst.error;
        size -= worst.size;
    }
    // Summed anew: what came and went has left its rounding.
    value = error = size = 0;
    for (; !pieces.empty(); pieces.pop()) {
        value += pieces.top().value;
        error += pieces.top().error;
        size += pieces.top().size;
    }
    return asked.result(error <= goodEnough * size, 0, value);
}

CalculusResult root(const RealFunction &function, double start, double low, double high) {
    constexpr double growth = 1.3;
    Asked asked(function);
    if (!(low <= start && start <= high)) return {};
    if (const auto found = newton(asked, start, low, high)) return *found;
    // Outward in growing steps, the nearer side first, until the sign changes between two neighbours.
    struct Side {
        double x, y, bound;
    };
    const double y = asked(start);
    Side sides[] = {{start, y, high}, {start, y, low}};
    double step = 0.01 * std::max(std::fabs(start), 0.1);
    for (bool moved = true; moved && !asked.isStopped;) {
        moved = false;
        for (Side &side : sides) {
            if (side.x == side.bound) continue;
            moved = true;
            const double beyond = side.x + (side.bound > start ? step : -step);
            const double x = side.bound > start ? std::min(beyond, high) : std::max(beyond, low);
            const double value = asked(x);
            if (value == 0) return asked.result(true, x, 0);
            if (value * side.y < 0) {
                const CalculusResult found = narrowed(asked, side.x, side.y, x, value);
                if (found.end == CalculusEnd::found) return found;
            }
            side.x = x;
            side.y = value;
        }
        step *= growth;
    }
    return asked.result(false, 0, 0);
}

CalculusResult minimum(const RealFunction &function, double low, double high) {
    Asked asked(function);
    const double width = (high - low) / minimumParts;
    Place best = lowestOfParts(asked, low, high, width);
    const double a = std::max(low, best.x - width), b = std::min(high, best.x + width);
    const Place inner = goldenSection(asked, a, b, 1e-9 * std::max({std::fabs(a), std::fabs(b), high - low}));
    if (inner.y < best.y) best = inner;
    // Where the slope is 0 tells the place to more digits than the values, of which many are alike.
    const RealFunction slope = [&](double place, double &value) {
        const CalculusResult found = derivative(function, place);
        value = found.end == CalculusEnd::found ? found.y : nothing;
        return found.end != CalculusEnd::stopped;
    };
    const double reach = 1e-4 * (high - low);
    if (best.x - reach > low && best.x + reach < high) {
        const CalculusResult flat = root(slope, best.x, best.x - reach, best.x + reach);
        if (flat.end == CalculusEnd::stopped) return flat;
        const double value = flat.end == CalculusEnd::found ? asked(flat.x) : nothing;
        if (value <= best.y + 4 * std::numeric_limits<double>::epsilon() * std::fabs(best.y)) best = {flat.x, value};
    }
    return asked.result(true, best.x, best.y);
}

}  // namespace numalink
