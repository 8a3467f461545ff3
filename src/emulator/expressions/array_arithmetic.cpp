#include "emulator/expressions/array_arithmetic.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "emulator/expressions/calls.h"
#include "emulator/expressions/complex_math.h"
#include "emulator/expressions/expression_code.h"
#include "emulator/expressions/recording.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/run_waits.h"
#include "emulator/numerics/linear_algebra.h"

namespace numalink {

namespace {

bool isInRange(const MatrixDescriptor *array) {
    const double *elements = matrixElements(array);
    for (int i = 0; i < matrixSize(array); i++) {
        if (!(std::fabs(elements[i]) <= largestResult)) return false;
    }
    return true;
}

ProgramCell boundArray(CellKind kind, MatrixDescriptor *array) {
    if (!isInRange(array)) maError();
    return arrayCell(kind, array);
}

// The operand's value at a place: a number is the same at each.
ComplexValue valueAt(const ProgramCell &operand, int place) {
    return isNumber(operand) ? operand.value : complexReal(matrixElements(operand.matrix)[place]);
}

// Element by element with the sizes of the array, which is one of the two.
ProgramCell combinedElements(const OperatorRow &row, const ProgramCell &left, const ProgramCell &right,
                             const ProgramCell &array) {
    MatrixDescriptor *result = matrixCopy(ownedTemporarily, array.matrix);
    for (int i = 0; i < matrixSize(result); i++) {
        const double value = row.binary(valueAt(left, i), valueAt(right, i)).re;
        matrixElements(result)[i] = value;
    }
    return boundArray(array.kind, result);
}

ProgramCell changedElements(const OperatorRow &row, const ProgramCell &array) {
    MatrixDescriptor *result = matrixCopy(ownedTemporarily, array.matrix);
    for (int i = 0; i < matrixSize(result); i++) {
        const double value = row.unary(complexReal(matrixElements(result)[i])).re;
        matrixElements(result)[i] = value;
    }
    return boundArray(array.kind, result);
}

std::span<double> elementsOf(const MatrixDescriptor *matrix) {
    return {matrixElements(matrix), static_cast<std::size_t>(matrixSize(matrix))};
}

ProgramCell matrixProduct(const MatrixDescriptor *left, const MatrixDescriptor *right) {
    if (left->cols != right->rows) return refusedCall(dimError);
    MatrixDescriptor *product = matrixAllocate(ownedTemporarily, right->cols, left->rows);
    if (!elementsOf(product).empty())
        multiplyMatrices(elementsOf(left), elementsOf(right), elementsOf(product), left->cols, right->cols);
    return boundArray(CellKind::matrix, product);
}

ProgramCell inverseMatrix(const MatrixDescriptor *matrix) {
    if (matrix->rows != matrix->cols) return refusedCall(dimError);
    MatrixDescriptor *inverse = matrixCopy(ownedTemporarily, matrix);
    if (!invertMatrix(elementsOf(inverse), inverse->rows)) return refusedCall(maError);
    return boundArray(CellKind::matrix, inverse);
}

// A whole power, by squares; below 0 of the inverse. A stop ends it.
ProgramCell matrixPower(const MatrixDescriptor *matrix, double exponent) {
    constexpr double largestExponent = 32767;
    if (matrix->rows != matrix->cols) return refusedCall(dimError);
    if (std::trunc(exponent) != exponent || std::fabs(exponent) > largestExponent) return refusedCall(maError);
    const int size = matrix->rows;
    std::vector<double> square(elementsOf(matrix).begin(), elementsOf(matrix).end());
    if (exponent < 0 && !invertMatrix(square, size)) return refusedCall(maError);
    std::vector<double> power(square.size()), product(square.size());
    for (std::size_t i = 0; i < power.size(); i += static_cast<std::size_t>(size) + 1) power[i] = 1;
    for (auto bits = static_cast<unsigned>(std::fabs(exponent)); bits != 0 && runGoesOn(); bits >>= 1) {
        if ((bits & 1) != 0) {
            multiplyMatrices(power, square, product, size, size);
            power.swap(product);
        }
        if (bits > 1) {
            multiplyMatrices(square, square, product, size, size);
            square.swap(product);
        }
    }
    MatrixDescriptor *result = matrixAllocate(ownedTemporarily, size, size);
    std::copy_n(power.begin(), matrixSize(result), matrixElements(result));
    return boundArray(CellKind::matrix, result);
}

bool haveOneSize(const ProgramCell &left, const ProgramCell &right) {
    return left.matrix->rows == right.matrix->rows && left.matrix->cols == right.matrix->cols;
}

ProgramCell combinedMatrices(const OperatorRow &row, const ProgramCell &left, const ProgramCell &right) {
    const bool areBoth = isArray(left) && isArray(right);
    const bool isProduct = row.binary == complexMul, isQuotient = row.binary == complexDiv;
    if (areBoth && isProduct) return matrixProduct(left.matrix, right.matrix);
    if (areBoth && (row.binary == complexAdd || row.binary == complexSub))
        return haveOneSize(left, right) ? combinedElements(row, left, right, left) : refusedCall(dimError);
    if (!areBoth && isProduct) return combinedElements(row, left, right, isArray(left) ? left : right);
    if (isArray(left) && isNumber(right) && isQuotient) return combinedElements(row, left, right, left);
    if (isArray(left) && isNumber(right) && row.binary == complexPow) return matrixPower(left.matrix, right.value.re);
    return refusedCall(synError);
}

// What else than powers a matrix takes by element: signs, and the parts and sizes of its numbers.
constexpr Token byElement[] = {{0x87}, {0x89}, {0x99}, {0x97}, {0xA6}, {0xB6}, {0xDE}};
constexpr Token squareMark{0x8B}, inverseMark{0x9B}, timesSign{0xA9};

}  // namespace

ProgramCell combinedArrays(const OperatorRow &row, const ProgramCell &left, const ProgramCell &right) {
    if (refusesRecording()) return numberCell({});
    if (left.kind == CellKind::matrix || right.kind == CellKind::matrix) {
        const bool hasList = left.kind == CellKind::list || right.kind == CellKind::list;
        return hasList ? refusedCall(synError) : combinedMatrices(row, left, right);
    }
    if (isArray(left) && isArray(right) && !haveOneSize(left, right)) return refusedCall(dimError);
    return combinedElements(row, left, right, isArray(left) ? left : right);
}

ProgramCell changedArray(const OperatorRow &row, const ProgramCell &array) {
    if (refusesRecording()) return numberCell({});
    if (array.kind == CellKind::list) return changedElements(row, array);
    if (row.token == squareMark) return matrixPower(array.matrix, 2);
    if (row.token == inverseMark) return inverseMatrix(array.matrix);
    for (const Token known : byElement) {
        if (row.token == known) return changedElements(row, array);
    }
    return refusedCall(synError);
}

ProgramCell productOfNeighbours(const ProgramCell &left, const ProgramCell &right) {
    return combinedArrays(*factsOf(tokenCell(timesSign)).row, left, right);
}

}  // namespace numalink
