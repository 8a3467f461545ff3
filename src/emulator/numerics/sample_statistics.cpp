#include "emulator/numerics/sample_statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

namespace numalink {

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

// The values that count, rising, each with the weight of all up to it.
struct Ranking {
    std::vector<double> values;
    std::vector<double> reach;

    explicit Ranking(const Sample &sample) {
        double reached = 0;
        for (const std::size_t i : risingOrder(sample.values)) {
            if (!(sample.weight(i) > 0)) continue;
            reached += sample.weight(i);
            values.push_back(sample.values[i]);
            reach.push_back(reached);
        }
    }
    double total() const { return reach.empty() ? 0 : reach.back(); }
    // The median of the part of the weight from low to high: where the middle lies between two values, their mean.
    double medianBetween(double low, double high) const {
        if (values.empty()) return none;
        const double middle = (low + high) / 2;
        const auto at = [this](auto place) {
            return values[std::min(static_cast<std::size_t>(place - reach.begin()), values.size() - 1)];
        };
        return std::midpoint(at(std::ranges::lower_bound(reach, middle)), at(std::ranges::upper_bound(reach, middle)));
    }
};

}  // namespace

Moments momentsOf(const Sample &sample) {
    long double count = 0, sum = 0, squares = 0;
    for (std::size_t i = 0; i < sample.values.size(); i++) {
        const long double value = sample.values[i], weight = sample.weight(i);
        count += weight;
        sum += weight * value;
        squares += weight * value * value;
    }
    const long double mean = sum / count;
    long double deviations = 0;
    for (std::size_t i = 0; i < sample.values.size(); i++) {
        const long double deviation = sample.values[i] - mean;
        deviations += sample.weight(i) * deviation * deviation;
    }
    Moments moments;
    moments.count = static_cast<double>(count);
    moments.sum = static_cast<double>(sum);
    moments.squares = static_cast<double>(squares);
    moments.mean = static_cast<double>(mean);
    moments.spread = static_cast<double>(deviations / count);
    moments.sampleSpread = count > 1 ? static_cast<double>(deviations / (count - 1)) : none;
    return moments;
}

Products productsOf(const Sample &xSample, std::span<const double> y) {
    const Moments ofX = momentsOf(xSample), ofY = momentsOf({y, xSample.weights});
    long double sum = 0, deviations = 0;
    for (std::size_t i = 0; i < y.size(); i++) {
        const long double weight = xSample.weight(i), x = xSample.values[i];
        sum += weight * x * y[i];
        deviations += weight * (x - ofX.mean) * (static_cast<long double>(y[i]) - ofY.mean);
    }
    return {static_cast<double>(sum), static_cast<double>(deviations)};
}

double medianOf(const Sample &sample) {
    const Ranking ranking(sample);
    return ranking.medianBetween(0, ranking.total());
}

Quartiles quartilesOf(const Sample &sample) {
    const Ranking ranking(sample);
    if (ranking.values.empty()) return {none, none, none, none, none};
    const double total = ranking.total();
    const double half = total < 2 ? total : std::floor(total / 2);
    return {ranking.values.front(), ranking.medianBetween(0, half), ranking.medianBetween(0, total),
            ranking.medianBetween(total - half, total), ranking.values.back()};
}

double modeOf(const Sample &sample) {
    const Ranking ranking(sample);
    double mode = none, most = 0;
    for (std::size_t i = 0, next = 0; i < ranking.values.size(); i = next) {
        while (next < ranking.values.size() && ranking.values[next] == ranking.values[i]) next++;
        const double count = ranking.reach[next - 1] - (i > 0 ? ranking.reach[i - 1] : 0);
        if (count <= most) continue;
        most = count;
        mode = ranking.values[i];
    }
    return mode;
}

std::vector<std::size_t> risingOrder(std::span<const double> values) {
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    // What is no number comes last, so that there is an order of all.
    std::ranges::stable_sort(order, [values](std::size_t a, std::size_t b) {
        if (std::isnan(values[a]) || std::isnan(values[b])) return !std::isnan(values[a]) && std::isnan(values[b]);
        return values[a] < values[b];
    });
    return order;
}

// Bisection finds the place, Newton's steps the digits.
double normalQuantile(double share) {
    const double side = std::min(share, 1 - share);
    double low = -40, high = 0;
    for (int i = 0; i < 20; i++) {
        const double middle = (low + high) / 2;
        (std::erfc(-middle / std::numbers::sqrt2) / 2 < side ? low : high) = middle;
    }
    double t = (low + high) / 2;
    for (int i = 0; i < 4; i++) {
        const double density = std::exp(-t * t / 2) / std::sqrt(2 * std::numbers::pi);
        t -= (std::erfc(-t / std::numbers::sqrt2) / 2 - side) / density;
    }
    return share < 0.5 ? t : -t;
}

}  // namespace numalink
