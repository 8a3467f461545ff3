// The functions of matrices: determinant, transposition, and a column as a list.
#include "emulator/expressions/array_functions.h"
#include "emulator/expressions/calls.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/numerics/linear_algebra.h"

namespace numalink {

namespace {

ProgramCell determinant(const MatrixDescriptor *matrix) {
    if (matrix->rows != matrix->cols || matrix->rows == 0) return refusedCall(dimError);
    const double value =
        determinantOf({matrixElements(matrix), static_cast<std::size_t>(matrixSize(matrix))}, matrix->rows);
    return value <= largestResult && value >= -largestResult ? numberCell(complexReal(value)) : refusedCall(maError);
}

ProgramCell transposed(const MatrixDescriptor *matrix) {
    MatrixDescriptor *result = matrixAllocate(ownedTemporarily, matrix->rows, matrix->cols);
    if (matrixSize(result) == matrixSize(matrix)) {
        for (int row = 0; row < result->rows; row++) {
            for (int col = 0; col < result->cols; col++)
                matrixElements(result)[row * result->cols + col] = matrixElements(matrix)[col * matrix->cols + row];
        }
    }
    return arrayCell(CellKind::matrix, result);
}

// Of the matrix behind the prefix.
template <ProgramCell (*function)(const MatrixDescriptor *)>
void evaluateMatrix(ProgramCell *cells, int p) {
    const ProgramCell &operand = cells[p + 1];
    cells[p] = operand.kind == CellKind::matrix ? function(operand.matrix) : refusedCall(synError);
    makeBlank(cells[p + 1]);
}

// Matrix and number of a column, from 1.
ProgramCell columnAsList(const CallArguments &arguments) {
    const int count = evaluateArguments(arguments);
    const ProgramCell *cells = arguments.cells + arguments.first;
    if (count != 3 || cells[0].kind != CellKind::matrix || !isToken(cells[1], token::comma) || !isNumber(cells[2]))
        return refusedCall(synError);
    const MatrixDescriptor *matrix = cells[0].matrix;
    const int column = cutToInteger(cells[2].value.re) - 1;
    if (column < 0 || column >= matrix->cols) return refusedCall(argError);
    MatrixDescriptor *list = matrixAllocate(ownedTemporarily, 1, matrix->rows);
    for (int row = 0; row < list->rows; row++)
        matrixElements(list)[row] = matrixElements(matrix)[row * matrix->cols + column];
    return arrayCell(CellKind::list, list);
}

constexpr OperatorRow rows[] = {
    call({0x7F, 0x4B}, "Mat to List(", columnAsList),

    onArrays({0x7F, 0x21}, "Det", evaluateMatrix<determinant>),
    onArrays({0x7F, 0x41}, "Trn", evaluateMatrix<transposed>),
};
static_assert(stepsRise(rows));

}  // namespace

std::span<const OperatorRow> matrixRows() { return rows; }

}  // namespace numalink
