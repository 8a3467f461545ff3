// Arithmetic with arrays as on the calculators: lists go by element, matrices by the rules of matrices. Only with the
// setting CalculatorModes; without it arrays are no operands. Run thread.
#pragma once

#include "emulator/expressions/operators.h"

namespace numalink {

// Whether an operator may take the cell: a number, or an array with calculator modes.
inline bool isOperand(const ProgramCell &cell) { return isNumber(cell) || (isArray(cell) && machine.calculatorModes); }

// Of two operands of which one at least is an array. Lists of two lengths and matrices whose sizes don't go together
// report Dim ERROR, operations that arrays don't have Syn ERROR, a matrix without an inverse and elements beyond the
// calculators' range Ma  ERROR. The number 0 after the first two.
ProgramCell combinedArrays(const OperatorRow &row, const ProgramCell &left, const ProgramCell &right);

// The same of an array alone, for prefixes and postfixes.
ProgramCell changedArray(const OperatorRow &row, const ProgramCell &array);

// Two operands side by side.
ProgramCell productOfNeighbours(const ProgramCell &left, const ProgramCell &right);

}  // namespace numalink
