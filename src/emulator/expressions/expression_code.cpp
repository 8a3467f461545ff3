#include "emulator/expressions/expression_code.h"

#include <cmath>

#include "emulator/expressions/complex_math.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"

namespace numalink {

namespace {

struct CodeRow {
    BinaryOperation operation;
    OperationCode code;
};
constexpr CodeRow codeRows[] = {
    {complexAdd, OperationCode::add},
    {complexSub, OperationCode::subtract},
    {complexMul, OperationCode::multiply},
    {complexDiv, OperationCode::divide},
    {complexLess, OperationCode::less},
    {complexLessOrEqual, OperationCode::lessOrEqual},
    {complexEqual, OperationCode::equal},
    {complexNotEqual, OperationCode::notEqual},
    {complexGreaterOrEqual, OperationCode::greaterOrEqual},
    {complexGreater, OperationCode::greater},
};

void holdToBound(const OperatorRow &row, ComplexValue left, ComplexValue right, ComplexValue result) {
    if (row.bound == Bound::none) return;
    const bool areReal = left.im == 0 && right.im == 0;
    if (row.bound == Bound::unlessPositive && areReal && left.re > 0 && right.re >= 0) return;
    const bool fits = std::fabs(result.re) <= largestResult && std::fabs(result.im) <= largestResult;
    if (!fits) maError();
}

ComplexValue elementValue(const Operation &operation) {
    const int row = cutToInteger(operation.left->re) - 1;
    const int column = operation.code == OperationCode::matrixElement ? cutToInteger(operation.right->re) - 1 : 0;
    return complexReal(matrixElement(slotOf(operation.array), column, row));
}

}  // namespace

OperationCode codeOf(const OperatorRow &row) {
    if (row.bound != Bound::none) return OperationCode::otherBinary;
    for (const CodeRow &known : codeRows) {
        if (known.operation == row.binary) return known.code;
    }
    return OperationCode::otherBinary;
}

std::optional<ArrayName> arrayNamed(CellKind kind, const ProgramCell &name, double number) {
    if (kind == CellKind::matrix) {
        MatrixSlot *slot = name.kind == CellKind::token ? matrixSlotRef(&name, 0) : nullptr;
        return slot == nullptr ? std::nullopt : std::optional(ArrayName{.matrix = slot});
    }
    if (isToken(name, token::ans)) return ArrayName{.list = listAnsSlot};
    const int list = isNumber(name) ? cutToInteger(number) : 0;
    return list >= 1 && list <= listNumberLimit ? std::optional(ArrayName{.list = list - 1}) : std::nullopt;
}

ComplexValue unaryResult(const OperatorRow &row, ComplexValue operand) {
    const ComplexValue result = row.unary(operand);
    holdToBound(row, operand, {}, result);
    return result;
}

ComplexValue binaryResult(const OperatorRow &row, ComplexValue left, ComplexValue right) {
    const ComplexValue result = row.binary(left, right);
    holdToBound(row, left, right, result);
    return result;
}

void carryOut(const Operation *operations, int count) {
    for (const Operation *next = operations, *end = operations + count; next != end; next++) {
        const Operation &operation = *next;
        switch (operation.code) {
            case OperationCode::add:
                *operation.result = complexAdd(*operation.left, *operation.right);
                break;
            case OperationCode::subtract:
                *operation.result = complexSub(*operation.left, *operation.right);
                break;
            case OperationCode::multiply:
                *operation.result = complexMul(*operation.left, *operation.right);
                break;
            case OperationCode::divide:
                *operation.result = complexDiv(*operation.left, *operation.right);
                break;
            case OperationCode::less:
                *operation.result = complexLess(*operation.left, *operation.right);
                break;
            case OperationCode::lessOrEqual:
                *operation.result = complexLessOrEqual(*operation.left, *operation.right);
                break;
            case OperationCode::equal:
                *operation.result = complexEqual(*operation.left, *operation.right);
                break;
            case OperationCode::notEqual:
                *operation.result = complexNotEqual(*operation.left, *operation.right);
                break;
            case OperationCode::greaterOrEqual:
                *operation.result = complexGreaterOrEqual(*operation.left, *operation.right);
                break;
            case OperationCode::greater:
                *operation.result = complexGreater(*operation.left, *operation.right);
                break;
            case OperationCode::otherBinary:
                *operation.result = binaryResult(*operation.row, *operation.left, *operation.right);
                break;
            case OperationCode::otherUnary:
                *operation.result = unaryResult(*operation.row, *operation.left);
                break;
            case OperationCode::source:
                *operation.result = operation.row->source();
                break;
            case OperationCode::listElement:
            case OperationCode::matrixElement:
                *operation.result = elementValue(operation);
                break;
        }
    }
}

}  // namespace numalink
