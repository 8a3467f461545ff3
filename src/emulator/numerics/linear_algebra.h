// Square matrices of plain doubles, row by row. Sums are kept in long double, so that results are those of the elements
// as they are, to some 15 digits where the matrix isn't nearly singular. No state; any thread.
#pragma once

#include <span>
#include <vector>

namespace numalink {

// Solves a system: matrix is n by n, and vector comes to hold the solution. False when a pivot is 0.
bool solveLinear(const std::vector<long double> &matrix, std::vector<long double> &vector);

// Of an n by n matrix. Exact where the elements are whole numbers and every product of n of them stays below 10^15;
// 1 where n is 0.
double determinantOf(std::span<const double> matrix, int n);

// Writes the inverse over the matrix. False, with the matrix as it was, where a pivot is below 1e-15 of its row: a
// double holds no more, so that such a matrix is singular.
bool invertMatrix(std::span<double> matrix, int n);

// left is rows by inner, right inner by cols, product rows by cols and none of the two.
void multiplyMatrices(std::span<const double> left, std::span<const double> right, std::span<double> product, int inner,
                      int cols);

}  // namespace numalink
