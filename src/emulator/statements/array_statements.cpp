// The statements that rearrange arrays in their slots: sorting lists, and the row operations of matrices.
#include <algorithm>
#include <utility>

#include "emulator/expressions/calls.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/statements/list_names.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

// The names with commas between up to the parenthesis, which may be missing. Empty where something else stands there.
std::vector<std::size_t> listNames(const RunState &state) {
    std::vector<std::size_t> names;
    const auto isAt = [&state](int place, Token which) {
        return hasCell(state, place) && isToken(state.statement[place], which);
    };
    int cell = 0;  // the word, then each comma
    do {
        const auto name = takeListName(state, ++cell);
        if (!name.has_value()) return {};
        names.push_back(*name);
    } while (isAt(cell, token::comma));
    if (isAt(cell, token::closeParenthesis)) cell++;
    if (cell != state.cellCount) names.clear();
    return names;
}

bool haveOneLength(const std::vector<std::size_t> &names) {
    const MatrixDescriptor *first = listInFile(names[0]);
    return std::ranges::all_of(names, [first](std::size_t name) {
        const MatrixDescriptor *list = listInFile(name);
        return first != nullptr && list != nullptr && matrixSize(list) == matrixSize(first);
    });
}

// The first list rises or falls, and the others follow it place by place.
template <int direction>
WayOut runSort(RunState &state) {
    const std::vector<std::size_t> names = listNames(state);
    if (names.empty()) {
        synError();
    } else if (!haveOneLength(names)) {
        dimError();
    } else {
        const auto size = static_cast<std::size_t>(matrixSize(listInFile(names[0])));
        std::vector<double> before(size);
        const double *keys = matrixElements(listInFile(names[0]));
        std::transform(keys, keys + size, before.begin(), [](double key) { return direction * key; });
        const std::vector<std::size_t> order = risingOrder(before);
        for (auto name = names.begin(); name != names.end(); name++) {
            if (std::find(names.begin(), name, *name) != name) continue;  // named twice
            double *elements = matrixElements(listInFile(*name));
            before.assign(elements, elements + size);
            for (std::size_t i = 0; i < size; i++) elements[i] = before[order[i]];
        }
    }
    return handled(state);
}

// Factor, matrix by its letter, and rows from 1, as a row operation has them.
struct RowOperation {
    double factor = 1;
    MatrixDescriptor *matrix = nullptr;
    int rows[2] = {0, 0};

    double &at(int which, int column) const { return matrixElements(matrix)[rows[which] * matrix->cols + column]; }
};

bool readRowNumber(const CallField &field, RowOperation &operation, int which) {
    ComplexValue value;
    if (!fieldValue(field, value)) return false;
    const int row = cutToInteger(value.re) - 1;
    if (row < 0 || row >= operation.matrix->rows) {
        argError();
        return false;
    }
    operation.rows[which] = row;
    return true;
}

// False after a report.
bool readRowOperation(const RunState &state, bool hasFactor, int rowCount, RowOperation &operation) {
    CallField fields[4];
    ProgramCell cells[statementLimit];
    std::copy_n(state.statement, state.cellCount, cells);
    const int matrixField = hasFactor ? 1 : 0;
    const int count = splitFields({cells, 1, state.cellCount - 1}, fields);
    CallField name = fields[matrixField];
    if (name.count == 2 && isToken(name.cells[0], token::matrix)) name = {name.cells + 1, 1};
    const bool fits = count == matrixField + 1 + rowCount && name.count == 1 && name.cells[0].kind == CellKind::token;
    const MatrixSlot *slot = fits ? matrixSlotRef(name.cells, 0) : nullptr;
    if (slot == nullptr || *slot == nullptr) {
        slot == nullptr ? synError() : dimError();
        return false;
    }
    operation.matrix = *slot;
    ComplexValue factor;
    if (hasFactor && !fieldValue(fields[0], factor)) return false;
    if (hasFactor) operation.factor = factor.re;
    for (int i = 0; i < rowCount; i++) {
        if (!readRowNumber(fields[matrixField + 1 + i], operation, i)) return false;
    }
    return true;
}

template <bool hasFactor, int rowCount, void (*change)(const RowOperation &, int column)>
WayOut runRowOperation(RunState &state) {
    RowOperation operation;
    if (readRowOperation(state, hasFactor, rowCount, operation)) {
        for (int column = 0; column < operation.matrix->cols; column++) change(operation, column);
    }
    return handled(state);
}

void swapRows(const RowOperation &on, int column) { std::swap(on.at(0, column), on.at(1, column)); }
void multiplyRow(const RowOperation &on, int column) { on.at(0, column) *= on.factor; }
void addRow(const RowOperation &on, int column) { on.at(1, column) += on.factor * on.at(0, column); }

constexpr StatementRow rows[] = {
    one({0x7F, 0x42}, runRowOperation<true, 1, multiplyRow>),  // times Row
    one({0x7F, 0x43}, runRowOperation<true, 2, addRow>),       // times Row plus
    one({0x7F, 0x44}, runRowOperation<false, 2, addRow>),      // Row plus
    one({0x7F, 0x45}, runRowOperation<false, 2, swapRows>),    // Swap
    one({0xF7, 0xB0}, runSort<1>),                             // SortA(
    one({0xF7, 0xB1}, runSort<-1>),                            // SortD(
};

}  // namespace

std::span<const StatementRow> arrayStatements() { return rows; }

}  // namespace numalink
