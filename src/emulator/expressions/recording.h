// Translation of an expression: the evaluator's own passes walk it once with operands in the place of values, and each
// operation that they would carry out is written down instead. So there is one definition of the language, the passes.
// What doesn't depend on the values alone (a stored function, a call, an array as a whole, a shape that reports)
// refuses, and the expression stays with the passes. Run thread.
#pragma once

#include <vector>

#include "emulator/expressions/expression_code.h"

namespace numalink {

// What one statement's expressions are written into. The operands are places that live as long as the machine and the
// program do: variables, numbers of the program, and the places of results.
struct Recording {
    std::vector<Operation> operations;
    std::vector<ArrayName> arrays;  // read by the operations: each must exist when they are carried out
    std::vector<const ComplexValue *> operands;
    int results = 0;
    bool refused = false;
};
extern Recording *recording;  // null while expressions are evaluated

// Runs the passes over a copy of the count cells at source, which must outlive the operations. Afterwards cells holds
// what they would leave, with numbers that operandOf knows, and count how many. False when it can't be translated; the
// recording is then of no use any more.
bool recordExpression(Recording &into, const ProgramCell *source, ProgramCell *cells, int &count);
const ComplexValue *operandOf(const Recording &in, const ProgramCell &number);

// What the passes ask. While a recording is on, a value is the number of an operand.
ComplexValue recordUnary(const OperatorRow &row, ComplexValue operand);
ComplexValue recordBinary(const OperatorRow &row, ComplexValue left, ComplexValue right);
ComplexValue recordProduct(ComplexValue left, ComplexValue right);  // the implicit one
ComplexValue recordSource(const OperatorRow &row);
ComplexValue recordVariable(const ComplexValue *variable);
// The array that the cells at the token and behind it name; null refuses.
MatrixDescriptor *recordArray(CellKind kind, const ProgramCell &name);
ComplexValue recordElement(const MatrixDescriptor *array, CellKind kind, ComplexValue row, ComplexValue column);

// True, and the recording is refused, when one is on: for what no operation can be written down for.
inline bool refusesRecording() {
    if (recording == nullptr) return false;
    recording->refused = true;
    return true;
}

}  // namespace numalink
