#include "emulator/expressions/recording.h"

#include <algorithm>

#include "emulator/expressions/evaluator.h"
#include "emulator/machine/errors.h"
#include "emulator/screens/number_input.h"

namespace numalink {

Recording *recording = nullptr;

namespace {

// The results of the operations of the statement in progress.
ComplexValue places[statementLimit];

constexpr int arrayLimit = 16;  // of a statement that is translated
MatrixDescriptor arrayMarks[arrayLimit];

ComplexValue operandNumber(const ComplexValue *operand) {
    recording->operands.push_back(operand);
    return complexReal(static_cast<double>(recording->operands.size() - 1));
}

const ComplexValue *operandNumbered(const Recording &in, ComplexValue number) {
    static const ComplexValue nothing;
    // Behind a report passes go on with what isn't one of our numbers; such a statement has no plan in the end.
    if (!(number.re >= 0 && number.re < static_cast<double>(in.operands.size()))) return &nothing;
    return in.operands[static_cast<std::size_t>(number.re)];
}

ComplexValue write(Operation operation) {
    if (recording->results == statementLimit) {
        recording->refused = true;
        return {};
    }
    operation.result = &places[recording->results++];
    recording->operations.push_back(operation);
    return operandNumber(operation.result);
}

}  // namespace

bool recordExpression(Recording &into, const ProgramCell *source, ProgramCell *cells, int &count) {
    if (count <= 0) return true;
    std::copy_n(source, count, cells);
    recording = &into;
    int reports = 0;
    reportsCounted = &reports;
    for (int i = 0; i < count; i++) {
        if (isNumber(cells[i])) cells[i].value = operandNumber(&source[i].value);
    }
    evaluate(cells, 0, count);
    reportsCounted = nullptr;
    recording = nullptr;
    if (reports > 0) into.refused = true;
    return !into.refused;
}

const ComplexValue *operandOf(const Recording &in, const ProgramCell &number) {
    return operandNumbered(in, number.value);
}

ComplexValue recordUnary(const OperatorRow &row, ComplexValue operand) {
    Operation next;
    next.code = OperationCode::otherUnary;
    next.row = &row;
    next.left = operandNumbered(*recording, operand);
    return write(next);
}

ComplexValue recordProduct(ComplexValue left, ComplexValue right) {
    Operation next;
    next.code = OperationCode::multiply;
    next.left = operandNumbered(*recording, left);
    next.right = operandNumbered(*recording, right);
    return write(next);
}

ComplexValue recordBinary(const OperatorRow &row, ComplexValue left, ComplexValue right) {
    Operation next;
    next.code = codeOf(row);
    next.row = &row;
    next.left = operandNumbered(*recording, left);
    next.right = operandNumbered(*recording, right);
    return write(next);
}

ComplexValue recordSource(const OperatorRow &row) {
    if (row.source == readNumber) recording->refused = true;  // it waits, and writes on the screen
    Operation next;
    next.code = OperationCode::source;
    next.row = &row;
    return write(next);
}

ComplexValue recordVariable(const ComplexValue *variable) { return operandNumber(variable); }

MatrixDescriptor *recordArray(CellKind kind, const ProgramCell &name) {
    const auto array = arrayNamed(kind, name, isNumber(name) ? operandOf(*recording, name)->re : 0);
    if (!array || recording->arrays.size() == arrayLimit) {
        recording->refused = true;
        return nullptr;
    }
    recording->arrays.push_back(*array);
    return &arrayMarks[recording->arrays.size() - 1];
}

ComplexValue recordElement(const MatrixDescriptor *array, CellKind kind, ComplexValue row, ComplexValue column) {
    const bool isMatrix = kind == CellKind::matrix;
    Operation next;
    next.code = isMatrix ? OperationCode::matrixElement : OperationCode::listElement;
    next.array = recording->arrays[static_cast<std::size_t>(array - arrayMarks)];
    next.left = operandNumbered(*recording, row);
    if (isMatrix) next.right = operandNumbered(*recording, column);
    return write(next);
}

}  // namespace numalink
