// Elimination by rows with the largest pivot of each column.
#include "emulator/numerics/linear_algebra.h"

#include <algorithm>
#include <cmath>

namespace numalink {

namespace {

// n rows of width elements: the matrix, and right of it what is eliminated along with it.
struct Rows {
    std::vector<long double> elements;
    std::size_t n, width;

    long double &at(std::size_t row, std::size_t column) { return elements[row * width + column]; }
    void swap(std::size_t a, std::size_t b) { std::swap_ranges(&at(a, 0), &at(a, 0) + width, &at(b, 0)); }
    std::size_t pivotRow(std::size_t column) {
        std::size_t best = column;
        for (std::size_t row = column + 1; row < n; row++) {
            if (std::fabs(at(row, column)) > std::fabs(at(best, column))) best = row;
        }
        return best;
    }
    // Takes so much of the pivot's row off another that its element below or above the pivot becomes 0.
    void eliminate(std::size_t row, std::size_t pivot) {
        const long double factor = at(row, pivot) / at(pivot, pivot);
        if (factor == 0) return;
        for (std::size_t column = pivot; column < width; column++) at(row, column) -= factor * at(pivot, column);
    }
};

// The determinant of whole numbers is one; the sizes of the rows bound it.
long double roundedDeterminant(std::span<const double> matrix, std::size_t n, long double determinant) {
    constexpr long double exactBelow = 1e15L;
    long double bound = 1;
    for (std::size_t row = 0; row < n; row++) {
        long double squares = 0;
        for (const double element : matrix.subspan(row * n, n)) {
            if (std::trunc(element) != element) return determinant;
            squares += static_cast<long double>(element) * element;
        }
        bound *= std::max(std::sqrt(squares), 1.0L);
    }
    return bound < exactBelow ? std::round(determinant) : determinant;
}

}  // namespace

bool solveLinear(const std::vector<long double> &matrix, std::vector<long double> &vector) {
    const std::size_t n = vector.size();
    Rows rows{std::vector<long double>(n * (n + 1)), n, n + 1};
    for (std::size_t row = 0; row < n; row++) {
        for (std::size_t column = 0; column < n; column++) rows.at(row, column) = matrix[row * n + column];
        rows.at(row, n) = vector[row];
    }
    for (std::size_t pivot = 0; pivot < n; pivot++) {
        rows.swap(pivot, rows.pivotRow(pivot));
        if (rows.at(pivot, pivot) == 0) return false;
        for (std::size_t row = 0; row < n; row++) {
            if (row != pivot) rows.eliminate(row, pivot);
        }
    }
    for (std::size_t row = 0; row < n; row++) vector[row] = rows.at(row, n) / rows.at(row, row);
    return true;
}

double determinantOf(std::span<const double> matrix, int size) {
    const auto n = static_cast<std::size_t>(size);
    Rows rows{{matrix.begin(), matrix.end()}, n, n};
    long double determinant = 1;
    for (std::size_t pivot = 0; pivot < n; pivot++) {
        const std::size_t row = rows.pivotRow(pivot);
        if (row != pivot) {
            rows.swap(pivot, row);
            determinant = -determinant;
        }
        determinant *= rows.at(pivot, pivot);
        if (determinant == 0) return 0;
        for (std::size_t below = pivot + 1; below < n; below++) rows.eliminate(below, pivot);
    }
    return static_cast<double>(roundedDeterminant(matrix, n, determinant));
}

bool invertMatrix(std::span<double> matrix, int size) {
    constexpr long double singularBelow = 1e-15L;
    const auto n = static_cast<std::size_t>(size);
    Rows rows{std::vector<long double>(n * 2 * n), n, 2 * n};
    std::vector<long double> largest(n);  // of each row as it was given
    for (std::size_t row = 0; row < n; row++) {
        for (std::size_t column = 0; column < n; column++) {
            rows.at(row, column) = matrix[row * n + column];
            largest[row] = std::max(largest[row], std::fabs(rows.at(row, column)));
        }
        rows.at(row, n + row) = 1;
    }
    for (std::size_t pivot = 0; pivot < n; pivot++) {
        const std::size_t row = rows.pivotRow(pivot);
        rows.swap(pivot, row);
        std::swap(largest[pivot], largest[row]);
        const bool isRegular = std::fabs(rows.at(pivot, pivot)) > singularBelow * largest[pivot];
        if (!isRegular) return false;
        for (std::size_t other = 0; other < n; other++) {
            if (other != pivot) rows.eliminate(other, pivot);
        }
    }
    for (std::size_t row = 0; row < n; row++) {
        for (std::size_t column = 0; column < n; column++)
            matrix[row * n + column] = static_cast<double>(rows.at(row, n + column) / rows.at(row, row));
    }
    return true;
}

void multiplyMatrices(std::span<const double> left, std::span<const double> right, std::span<double> product, int inner,
                      int cols) {
    const auto middle = static_cast<std::size_t>(inner), width = static_cast<std::size_t>(cols);
    for (std::size_t place = 0; place < product.size(); place++) {
        const std::size_t row = place / width, column = place % width;
        long double sum = 0;
        for (std::size_t k = 0; k < middle; k++)
            sum += static_cast<long double>(left[row * middle + k]) * right[k * width + column];
        product[place] = static_cast<double>(sum);
    }
}

}  // namespace numalink
