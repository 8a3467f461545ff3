// What a sample of numbers tells of itself. Each value has a weight: how often it counts, any number from 0 on. No
// state; any thread.
#pragma once

#include <span>
#include <vector>

namespace numalink {

// Values and weights of one length; no weights: each counts once.
struct Sample {
    std::span<const double> values;
    std::span<const double> weights;

    double weight(std::size_t i) const { return weights.empty() ? 1 : weights[i]; }
};

struct Moments {
    double count = 0;  // sum of the weights
    double sum = 0, squares = 0;
    double mean = 0;
    double spread = 0;        // the square of the standard deviation of the values themselves, not below 0
    double sampleSpread = 0;  // of what they are a sample of: with the count less 1; no number for a count up to 1
};
Moments momentsOf(const Sample &sample);

// The sum of the products, and that of the deviations from the means: n times the covariance. ySample's weights aren't
// looked at.
struct Products {
    double sum = 0;
    double deviations = 0;
};
Products productsOf(const Sample &xSample, std::span<const double> y);

// The value in the middle of all that count, or the mean of the two there. No number where none counts.
double medianOf(const Sample &sample);

// Smallest, the median of those below the middle, the median, of those above it, largest; the value in the middle of
// an odd count belongs to neither half. A single one stands for all.
struct Quartiles {
    double smallest = 0, first = 0, median = 0, third = 0, largest = 0;
};
Quartiles quartilesOf(const Sample &sample);

double modeOf(const Sample &sample);  // the value that counts most, the smallest of several

// The places of the values from the smallest to the largest; the first of equal ones stays first.
std::vector<std::size_t> risingOrder(std::span<const double> values);

// The t below which the normal distribution has so much of its area, to 1e-14 of t. share lies between 0 and 1.
double normalQuantile(double share);

}  // namespace numalink
