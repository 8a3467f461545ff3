// An expression as a list of operations on fixed places: what recording.h writes down and the plans of statements carry
// out. One that stands here gives bit for bit what evaluate gives, reports and their order included. Run thread.
#pragma once

#include <cstdint>
#include <optional>

#include "emulator/expressions/operators.h"

namespace numalink {

enum class OperationCode : std::uint8_t {
    add,
    subtract,
    multiply,
    divide,
    less,
    lessOrEqual,
    equal,
    notEqual,
    greaterOrEqual,
    greater,
    otherBinary,
    otherUnary,
    source,
    listElement,
    matrixElement
};

// An array that operations read or a statement writes to, by its name: where it lies is looked up at each use.
struct ArrayName {
    MatrixSlot *matrix = nullptr;  // null for a list
    std::int32_t list = 0;         // of the current file, from 0
};
inline MatrixSlot &slotOf(const ArrayName &name) {
    if (name.matrix != nullptr) return *name.matrix;
    return machine.listSlots[static_cast<std::size_t>(machine.currentFile)][static_cast<std::size_t>(name.list)];
}

// The array that a name behind its word gives: a letter or Ans, or a list's number, which is that value. Nothing where
// it gives none; nothing is reported.
std::optional<ArrayName> arrayNamed(CellKind kind, const ProgramCell &name, double number);

struct Operation {
    OperationCode code = OperationCode::add;
    ArrayName array;                      // of an element
    const OperatorRow *row = nullptr;     // of the operations without a code of their own
    const ComplexValue *left = nullptr;   // the only operand of a unary operation; the row of an element
    const ComplexValue *right = nullptr;  // the column of a matrix element
    ComplexValue *result = nullptr;
};

void carryOut(const Operation *operations, int count);

// The code of a binary operation that has one of its own, else otherBinary.
OperationCode codeOf(const OperatorRow &row);
// What the row computes of two values, reported where it is held to a bound and lies beyond.
ComplexValue unaryResult(const OperatorRow &row, ComplexValue operand);
ComplexValue binaryResult(const OperatorRow &row, ComplexValue left, ComplexValue right);

}  // namespace numalink
