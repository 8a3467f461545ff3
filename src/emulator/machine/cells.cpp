// Compaction, search, and what a cell names.
#include "emulator/machine/cells.h"

#include <algorithm>

#include "emulator/machine/errors.h"
#include "emulator/machine/named_values.h"

namespace numalink {

namespace {

// Second bytes behind 0x7F to view window values; -1 names nothing.
constexpr int windowValueOf[] = {xMin, xMax, xScale, -1, yMin, yMax, yScale, -1, tThetaMin, tThetaMax, tThetaPitch};
static_assert(std::size(windowValueOf) == 0x0B);

constexpr bool isLetter(std::uint8_t byte) { return byte >= 'A' && byte <= 'Z'; }

}  // namespace

ProgramCell tokenCell(Token which) {
    ProgramCell cell;
    cell.kind = CellKind::token;
    cell.token1 = which.first;
    cell.token2 = which.second;
    return cell;
}

ProgramCell numberCell(ComplexValue value) {
    ProgramCell cell;
    makeNumber(cell, value);
    return cell;
}

ProgramCell arrayCell(CellKind kind, MatrixDescriptor *descriptor) {
    ProgramCell cell;
    makeArray(cell, kind, descriptor);
    return cell;
}

void compactCells(ProgramCell *cells, int first, int &count) {
    const int end = first + count;
    int kept = first;
    for (int i = first; i < end; i++) {
        if (cells[i].kind == CellKind::blank) continue;
        if (kept != i) cells[kept] = cells[i];
        kept++;
    }
    count = std::min(count, kept - first);
}

int findToken(Token which, const ProgramCell *cells, int first, int count) {
    for (int i = first; i < first + count; i++) {
        if (isToken(cells[i], which)) return i;
    }
    return -1;
}

ComplexValue *variableRef(const ProgramCell &cell) {
    if (cell.kind != CellKind::token) return nullptr;
    if (isLetter(cell.token1)) return &machine.variables[static_cast<std::size_t>(cell.token1 - 'A')];
    switch (cell.token1) {
        case 0xCD:
            return &machine.variables[variableR];
        case 0xCE:
            return &machine.variables[variableTheta];
        case 0xC0:
            return &machine.ans;
        case 0x7F:
            if (cell.token2 >= std::size(windowValueOf)) return namedValueRef({cell.token1, cell.token2});
            if (windowValueOf[cell.token2] < 0) return nullptr;
            return &machine.window[static_cast<std::size_t>(windowValueOf[cell.token2])];
        default:
            return namedValueRef({cell.token1, cell.token2});
    }
}

MatrixSlot *matrixSlotRef(const ProgramCell *cells, int i) {
    const ProgramCell &cell = cells[i];
    if (cell.kind != CellKind::token) {
        synError();
        return nullptr;
    }
    if (isLetter(cell.token1)) return &machine.matrixSlots[static_cast<std::size_t>(cell.token1 - 'A')];
    return isToken(cell, token::ans) ? &machine.matrixSlots[matrixAnsSlot] : nullptr;
}

MatrixSlot *listSlotRef(const ProgramCell *cells, int i) {
    const ProgramCell &cell = cells[i];
    auto &file = machine.listSlots[static_cast<std::size_t>(machine.currentFile)];
    if (isToken(cell, token::ans)) return &file[listAnsSlot];
    if (!isNumber(cell)) return nullptr;
    const int number = cutToInteger(cell.value.re);
    return number >= 1 && number <= listNumberLimit ? &file[static_cast<std::size_t>(number - 1)] : nullptr;
}

}  // namespace numalink
