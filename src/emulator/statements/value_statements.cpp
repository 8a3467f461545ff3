// Conditions, assignments and Fill(: what a value is kept in or decides.
#include "emulator/expressions/evaluator.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/statements/statement_rows.h"

namespace numalink {

namespace {

constexpr int elementCell = 5;  // the first cell of a subscript in an assignment

bool isCell(const RunState &state, int cell, Token which) {
    return hasCell(state, cell) && isToken(state.statement[cell], which);
}

// The slot that the name in a cell gives, null when there is no name there. Reports nothing.
MatrixSlot *matrixNamedBy(const RunState &state, int cell) {
    if (!hasCell(state, cell) || state.statement[cell].kind != CellKind::token) return nullptr;
    return matrixSlotRef(state.statement, cell);
}

MatrixSlot *listNamedBy(const RunState &state, int cell) {
    return hasCell(state, cell) ? listSlotRef(state.statement, cell) : nullptr;
}

bool isLetter(const ProgramCell &cell) {
    return cell.kind == CellKind::token && cell.token1 >= 'A' && cell.token1 <= 'Z';
}

bool assignToVariables(RunState &state) {
    const ProgramCell *cells = state.statement;
    ComplexValue *variable = hasCell(state, 2) ? variableRef(cells[2]) : nullptr;
    if (state.cellCount == 3 && variable != nullptr) {
        *variable = cells[0].value;
        return true;
    }
    if (state.cellCount != 5 || !isLetter(cells[2]) || !isToken(cells[3], token::rangeMark) || !isLetter(cells[4]) ||
        cells[2].token1 >= cells[4].token1)
        return false;
    for (int letter = cells[2].token1; letter <= cells[4].token1; letter++)
        machine.variables[static_cast<std::size_t>(letter - 'A')] = cells[0].value;
    return true;
}

bool assignListLength(const RunState &state) {
    if (state.cellCount != 5 || !isCell(state, 2, token::dim) || !isCell(state, 3, token::list)) return false;
    MatrixSlot *slot = listNamedBy(state, 4);
    if (slot == nullptr) return false;
    matrixRenew(ownedByVariable, *slot, 1, cutToInteger(numberAt(state, 0)));
    return true;
}

void evaluateSubscript(RunState &state) {
    int count = state.cellCount - elementCell;
    if (count <= 0) return;
    evaluate(state.statement, elementCell, count);
    state.cellCount = elementCell + count;
}

// Subscripts count from 1; one that lies outside of every int stays outside.
int indexAt(const RunState &state, int cell) { return cutToInteger(numberAt(state, cell)) - 1; }

void storeElement(MatrixSlot slot, int column, int row, double value) {
    if (column < 0 || column >= slot->cols || row < 0 || row >= slot->rows) {
        argError();
    } else {
        matrixElement(slot, column, row) = value;
    }
}

bool assignElement(RunState &state) {
    const bool isMatrix = isCell(state, 2, token::matrix);
    const bool isList = isCell(state, 2, token::list) && isCell(state, 4, token::openBracket);
    if (!isMatrix && !isList) return false;
    const MatrixSlot *slot = isMatrix ? matrixNamedBy(state, 3) : listNamedBy(state, 3);
    if (slot == nullptr) return false;
    if (*slot == nullptr) {
        dimError();
        return true;
    }
    const double value = numberAt(state, 0);
    evaluateSubscript(state);
    if (!hasShape(state, elementCell, isMatrix ? "n,n" : "n")) synError();
    if (*slot == nullptr) return true;
    storeElement(*slot, isMatrix ? indexAt(state, elementCell + 2) : 0, indexAt(state, elementCell), value);
    return true;
}

bool assignMatrix(RunState &state) {
    MatrixSlot *slot = isCell(state, 2, token::matrix) ? matrixNamedBy(state, 3) : nullptr;
    if (slot == nullptr) return false;
    matrixAssign(ownedByVariable, *slot, state.statement[0].matrix);
    return true;
}

bool assignMatrixSize(RunState &state) {
    if (!isCell(state, 2, token::dim) || !isCell(state, 3, token::matrix)) return false;
    MatrixSlot *slot = matrixNamedBy(state, 4);
    MatrixDescriptor *size = state.statement[0].matrix;
    if (slot == nullptr) return false;
    if (matrixSize(size) != 2) synError();
    if (matrixSize(size) < 2) return true;
    const int rows = cutToInteger(matrixElement(size, 0, 0));
    const int columns = cutToInteger(matrixElement(size, 0, 1));
    matrixRenew(ownedByVariable, *slot, columns, rows);
    return true;
}

bool assignList(RunState &state) {
    MatrixSlot *slot = isCell(state, 2, token::list) ? listNamedBy(state, 3) : nullptr;
    if (slot == nullptr) return assignMatrixSize(state);
    matrixAssign(ownedByVariable, *slot, state.statement[0].matrix);
    return true;
}

bool assign(RunState &state) {
    switch (state.statement[0].kind) {
        case CellKind::number:
            return assignToVariables(state) || assignListLength(state) || assignElement(state);
        case CellKind::matrix:
            return assignMatrix(state);
        case CellKind::list:
            return assignList(state);
        default:
            return false;
    }
}

}  // namespace

// Behind the value and the comma stands the array by its name, unevaluated.
WayOut runFill(RunState &state) {
    const int comma = findToken(token::comma, state.statement, 0, state.cellCount);
    if (comma < 0) {
        synError();
        return handled(state);
    }
    int count = comma - 1;
    evaluate(state.statement, 1, count);
    if (count != 1 || !isNumber(state.statement[1])) synError();
    blankCells(state.statement, 2, comma);
    compactCells(state.statement, 0, state.cellCount);
    const bool isMatrix = isCell(state, 3, token::matrix);
    const bool isList = isCell(state, 3, token::list);
    const bool hasName = hasCell(state, 4);
    const MatrixSlot *slot = isMatrix && hasName ? matrixSlotRef(state.statement, 4)  // reports what is no name
                             : isList            ? listNamedBy(state, 4)
                                                 : nullptr;
    if (slot == nullptr) {
        synError();
        return handled(state);
    }
    if (*slot == nullptr) {
        dimError();
        return WayOut::programEnds;
    }
    matrixFill(numberAt(state, 1), *slot);
    return handled(state);
}

WayOut runCondition(RunState &state, int arrow) {
    int count = arrow;
    evaluate(state.statement, 0, count);
    if (count != 1) synError();
    blankCells(state.statement, 1, arrow);
    compactCells(state.statement, 0, state.cellCount);
    if (!isNumber(state.statement[0])) {
        synError();
        return handled(state);
    }
    if (numberAt(state, 0) != 0) {
        state.position = findToken(token::then, state.program, state.position, state.statementLength) + 1;
        return WayOut::jump;
    }
    state.cellCount = 0;
    return WayOut::handled;
}

WayOut runAssignment(RunState &state, int arrow) {
    int count = arrow;
    evaluate(state.statement, 0, count);
    if (count < arrow) {
        blankCells(state.statement, count < 0 ? 0 : count, arrow);
        compactCells(state.statement, 0, state.cellCount);
    }
    const bool hasOneValue = findToken(token::arrow, state.statement, 0, state.cellCount) == 1;
    if (!hasOneValue || !assign(state)) synError();
    return handled(state);
}

}  // namespace numalink
