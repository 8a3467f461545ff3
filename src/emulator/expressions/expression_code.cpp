#include "emulator/expressions/expression_code.h"

#include "emulator/expressions/complex_math.h"
#include "emulator/machine/arrays.h"

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

ComplexValue elementValue(const Operation &operation) {
    const int row = cutToInteger(operation.left->re) - 1;
    const int column = operation.code == OperationCode::matrixElement ? cutToInteger(operation.right->re) - 1 : 0;
    return complexReal(matrixElement(slotOf(operation.array), column, row));
}

}  // namespace

OperationCode codeOf(BinaryOperation operation) {
    for (const CodeRow &row : codeRows) {
        if (row.operation == operation) return row.code;
    }
    return OperationCode::otherBinary;
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
                *operation.result = operation.binary(*operation.left, *operation.right);
                break;
            case OperationCode::otherUnary:
                *operation.result = operation.unary(*operation.left);
                break;
            case OperationCode::source:
                *operation.result = operation.origin();
                break;
            case OperationCode::listElement:
            case OperationCode::matrixElement:
                *operation.result = elementValue(operation);
                break;
        }
    }
}

}  // namespace numalink
