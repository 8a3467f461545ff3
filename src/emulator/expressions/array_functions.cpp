// Dim, Identity, Sum, Augment(, List to Mat( and Seq(.
#include "emulator/expressions/array_functions.h"

#include <algorithm>
#include <numeric>

#include "emulator/expressions/calls.h"
#include "emulator/expressions/evaluator.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/run_waits.h"

namespace numalink {

namespace {

// One list behind the other.
ProgramCell joinLists(const MatrixDescriptor *first, const MatrixDescriptor *second) {
    MatrixDescriptor *joined = matrixAllocate(ownedTemporarily, 1, first->rows + second->rows);
    if (matrixSize(joined) == first->rows + second->rows) {
        double *end = std::copy_n(matrixElements(first), first->rows, matrixElements(joined));
        std::copy_n(matrixElements(second), second->rows, end);
    }
    return arrayCell(CellKind::list, joined);
}

// Two matrices side by side; as on the calculators, two lists as well.
ProgramCell augment(const CallArguments &arguments) {
    const ProgramCell *cells = arguments.cells + arguments.first;
    const bool areLists = arguments.count == 3 && cells[0].kind == CellKind::list && isToken(cells[1], token::comma) &&
                          cells[2].kind == CellKind::list;
    if (areLists && machine.calculatorModes) return joinLists(cells[0].matrix, cells[2].matrix);
    if (arguments.count != 3 || cells[0].kind != CellKind::matrix || !isToken(cells[1], token::comma) ||
        cells[2].kind != CellKind::matrix)
        return refusedCall(synError);
    MatrixSlot joined = nullptr;
    if (!matrixAugment(ownedTemporarily, joined, cells[0].matrix, cells[2].matrix)) return numberCell({});
    return arrayCell(CellKind::matrix, joined);
}

// The array of the argument at place, which moves behind it; null after a report.
const MatrixDescriptor *listArgument(const CallArguments &arguments, int &place) {
    if (place < arguments.end() && arguments.cells[place].kind == CellKind::list)
        return arguments.cells[place++].matrix;
    if (place < arguments.end() && isToken(arguments.cells[place], token::list)) place++;
    const MatrixSlot *slot = place < arguments.end() ? listSlotRef(arguments.cells, place) : nullptr;
    place++;
    if (slot == nullptr) {
        synError();
        return nullptr;
    }
    if (*slot == nullptr) dimError();
    return *slot;
}

ProgramCell listToMatrix(const CallArguments &arguments) {
    MatrixSlot joined = nullptr;
    bool reported = false;
    int place = arguments.first;
    do {
        const MatrixDescriptor *list = listArgument(arguments, place);
        const bool isFirst = joined == nullptr;
        if (list != nullptr && isFirst) matrixAssign(ownedTemporarily, joined, list);
        if (list == nullptr || (!isFirst && !matrixAugment(ownedTemporarily, joined, joined, list))) reported = true;
    } while (place < arguments.end() && isToken(arguments.cells[place++], token::comma));
    return reported ? numberCell({}) : arrayCell(CellKind::matrix, joined);
}

// Seq(expression, variable, start, end, step), told apart by its commas.
struct Sequence {
    const ProgramCell *expression = nullptr;
    int expressionCount = 0;
    ComplexValue *variable = nullptr;
    double start = 0, end = 0, step = 0;
};

// Whether the steps lead toward the end. Bounds that are no numbers pass, and the loop then gives an empty list.
bool hasDirection(const Sequence &sequence) {
    if (sequence.step < 0) return !(sequence.start < sequence.end);
    return sequence.step != 0 && !(sequence.step > 0 && sequence.start > sequence.end);
}

// Behind the expression stand, one cell each: comma, variable, comma, start, comma, end, comma, step.
bool readSequence(const CallArguments &arguments, Sequence &sequence) {
    constexpr int cellsBehindExpression = 8;
    const ProgramCell *cells = arguments.cells + arguments.first;
    const auto isComma = [](const ProgramCell &cell) { return isToken(cell, token::comma); };
    if (std::count_if(cells, cells + arguments.count, isComma) != 4) return false;
    const auto fields = std::find_if(cells, cells + arguments.count, isComma);
    if (cells + arguments.count - fields != cellsBehindExpression) return false;
    if (!isComma(fields[2]) || !isComma(fields[4]) || !isComma(fields[6])) return false;
    if (!isNumber(fields[3]) || !isNumber(fields[5]) || !isNumber(fields[7])) return false;
    sequence = {cells,
                static_cast<int>(fields - cells),
                variableRef(fields[1]),
                fields[3].value.re,
                fields[5].value.re,
                fields[7].value.re};
    return sequence.variable != nullptr && hasDirection(sequence);
}

// Runs the loop; the count of results, or -1 after a report.
int runSequence(const Sequence &sequence, double *results) {
    ProgramCell expression[sequenceCellLimit];  // as it was before the loop
    std::copy_n(sequence.expression, sequence.expressionCount, expression);
    ProgramCell work[sequenceCellLimit];
    bool reported = false;
    int resultCount = 0;
    double &place = sequence.variable->re;
    *sequence.variable = {};
    place = sequence.start;
    while ((sequence.step > 0 && place <= sequence.end) || (sequence.step < 0 && place >= sequence.end)) {
        if (resultCount == elementLimit) {
            synError();
            return -1;
        }
        if (!workGoesOn()) return -1;
        std::copy_n(expression, sequence.expressionCount, work);
        int count = sequence.expressionCount;
        evaluate(work, 0, count);
        if (count != 1 || !isNumber(work[0])) {
            synError();
            reported = true;
        }
        results[resultCount++] = count > 0 ? work[0].value.re : 0;
        place += sequence.step;
    }
    return reported ? -1 : resultCount;
}

ProgramCell makeSequence(const CallArguments &arguments) {
    Sequence sequence;
    if (!readSequence(arguments, sequence)) return refusedCall(argError);
    if (sequence.expressionCount > sequenceCellLimit) return refusedCall(synError);
    double results[elementLimit];
    const int count = runSequence(sequence, results);
    if (count < 0) return numberCell({});
    MatrixDescriptor *list = matrixAllocate(ownedTemporarily, 1, count);
    std::copy_n(results, matrixSize(list), matrixElements(list));
    return arrayCell(CellKind::list, list);
}

// The prefix at p with its operand behind it; the operand is blanked unless Sum finds no list.
void evaluateDim(ProgramCell *cells, int p) {
    const ProgramCell &operand = cells[p + 1];
    if (operand.kind == CellKind::matrix) {
        const MatrixDescriptor size = *operand.matrix;
        MatrixDescriptor *list = matrixAllocate(ownedTemporarily, 1, 2);
        const double elements[] = {static_cast<double>(size.rows), static_cast<double>(size.cols)};
        std::copy_n(elements, matrixSize(list), matrixElements(list));
        makeArray(cells[p], CellKind::list, list);
    } else if (operand.kind == CellKind::list) {
        makeNumber(cells[p], complexReal(operand.matrix->rows));
    } else {
        synError();
        cells[p].kind = CellKind::number;
    }
    makeBlank(cells[p + 1]);
}

void evaluateIdentity(ProgramCell *cells, int p) {
    const int size = cutToInteger(cells[p + 1].value.re);
    if (!isNumber(cells[p + 1])) {
        synError();
    } else if (size < 1) {
        argError();
    }
    MatrixDescriptor *matrix = matrixAllocate(ownedTemporarily, size, size);
    for (int i = 0; i < matrix->rows; i++) matrixElement(matrix, i, i) = 1;
    makeArray(cells[p], CellKind::matrix, matrix);
    makeBlank(cells[p + 1]);
}

void evaluateSum(ProgramCell *cells, int p) {
    const ProgramCell &operand = cells[p + 1];
    if (operand.kind != CellKind::list) return synError();
    const double *elements = matrixElements(operand.matrix);
    makeNumber(cells[p], complexReal(std::accumulate(elements, elements + matrixSize(operand.matrix), 0.0)));
    makeBlank(cells[p + 1]);
}

constexpr OperatorRow rows[] = {
    call({0x7F, 0x2C}, "Seq(", makeSequence),         call({0x7F, 0x49}, "Augment(", augment),
    call({0x7F, 0x4A}, "List to Mat(", listToMatrix),

    onArrays({0x7F, 0x46}, "Dim", evaluateDim),       onArrays({0x7F, 0x48}, "Identity", evaluateIdentity),
    onArrays({0x7F, 0x4C}, "Sum", evaluateSum),
};
static_assert(stepsRise(rows));

}  // namespace

std::span<const OperatorRow> arrayRows() { return rows; }

}  // namespace numalink
