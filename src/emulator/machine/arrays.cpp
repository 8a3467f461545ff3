// Invariants of the pool, true between any two operations:
//   (1) The cells in use are exactly those from 0 to cellsUsed.
//   (2) The rows of the table in use cover them without gap or overlap, in any order.
//   (3) A row never moves; its cells may. So a pointer to a cell dies with the next free.
#include "emulator/machine/arrays.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "emulator/machine/errors.h"
#include "emulator/machine/run_waits.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// All of this is the active run thread's, as the machine is.
std::unique_ptr<double[]> pool;  // taken at the first run, kept to the end of the process
int cellsUsed = 0;
MatrixDescriptor table[matrixRowLimit];
int rowsUsed = 0;  // rows from here on have never been in use since the reset
int rowsInUse = 0;
int temporaryCount = 0;  // rows owned temporarily

// What the copies not made for borrowed arrays would take: they count against the limits like copies.
int borrowedCells = 0, borrowedRows = 0;

MatrixDescriptor emptyArray;  // what an exhausted machine hands out
double spareElement = 0;      // what a place outside of every array reads and writes

bool isTableRow(const MatrixDescriptor *descriptor) { return descriptor >= table && descriptor < table + rowsUsed; }

MatrixDescriptor *refuse(Text text) {
    if (isAside()) {
        giveUpAside();
    } else if (!machine.exhausted) {
        machine.exhausted = true;
        failWith(text);
    }
    emptyArray = {};
    return &emptyArray;
}

// What tells that something gives out with one more array of so many elements, or none.
Text fullText(std::int64_t size) {
    if (size > poolCellLimit - cellsUsed - borrowedCells) return Text::matrixMemoryFull;
    return rowsInUse + borrowedRows < matrixRowLimit ? Text::none : Text::tooManyMatrices;
}

// A row and its cells, whose values are still to be set.
MatrixDescriptor *takeRow(std::int32_t owner, int cols, int rows) {
    if (const Text text = fullText(std::int64_t{cols} * rows); text != Text::none) return refuse(text);
    const auto isFree = [](const MatrixDescriptor &row) { return row.owner == 0; };
    MatrixDescriptor *descriptor = std::find_if(table, table + rowsUsed, isFree);
    rowsUsed = std::max(rowsUsed, static_cast<int>(descriptor - table) + 1);
    rowsInUse++;
    temporaryCount += owner == ownedTemporarily;
    *descriptor = {cols, rows, cellsUsed, owner};
    cellsUsed += cols * rows;
    return descriptor;
}

}  // namespace

PoolRecords poolRecords() {
    PoolRecords records{.cellsUsed = cellsUsed,
                        .rowsUsed = rowsUsed,
                        .rowsInUse = rowsInUse,
                        .temporaryCount = temporaryCount,
                        .borrowedCells = borrowedCells,
                        .borrowedRows = borrowedRows};
    std::ranges::copy(table, records.table.begin());
    return records;
}

const double *poolElements() { return pool.get(); }

void poolRestore(const PoolRecords &records, const double *elements) {
    std::ranges::copy(records.table, table);
    cellsUsed = records.cellsUsed;
    rowsUsed = records.rowsUsed;
    rowsInUse = records.rowsInUse;
    temporaryCount = records.temporaryCount;
    borrowedCells = records.borrowedCells;
    borrowedRows = records.borrowedRows;
    if (elements != nullptr) std::copy_n(elements, cellsUsed, pool.get());
}

int matrixRowOf(const MatrixDescriptor *descriptor) {
    return descriptor >= table && descriptor < table + matrixRowLimit ? static_cast<int>(descriptor - table) : -1;
}

MatrixDescriptor *matrixRowAt(int place) { return table + place; }

void poolReset() {
    if (pool == nullptr) pool = std::make_unique<double[]>(poolCellLimit);
    cellsUsed = 0;
    rowsUsed = rowsInUse = temporaryCount = 0;
    borrowedCells = borrowedRows = 0;
    std::fill(std::begin(table), std::end(table), MatrixDescriptor{});
}

MatrixDescriptor *matrixAllocate(std::int32_t owner, int cols, int rows) {
    MatrixDescriptor *descriptor = takeRow(owner, std::max(cols, 0), std::max(rows, 0));
    matrixFill(0, descriptor);
    return descriptor;
}

MatrixDescriptor *matrixCopy(std::int32_t owner, const MatrixDescriptor *source) {
    MatrixDescriptor *copy = takeRow(owner, source->cols, source->rows);
    if (copy != &emptyArray) std::copy_n(matrixElements(source), matrixSize(source), matrixElements(copy));
    return copy;
}

bool matrixBorrow(const MatrixDescriptor *source) {
    if (source->owner != ownedByVariable || fullText(matrixSize(source)) != Text::none) return false;
    borrowedCells += matrixSize(source);
    borrowedRows++;
    return true;
}

bool matrixCopiesFit(std::int64_t elements, int arrays) {
    return elements <= poolCellLimit - cellsUsed - borrowedCells && rowsInUse + borrowedRows + arrays <= matrixRowLimit;
}

MatrixDescriptor *matrixUnborrow(const MatrixDescriptor *source) {
    borrowedCells -= matrixSize(source);
    borrowedRows--;
    return matrixCopy(ownedTemporarily, source);
}

void matrixFree(MatrixDescriptor *descriptor) {
    if (!isTableRow(descriptor) || descriptor->owner == 0) return;
    const int size = matrixSize(descriptor);
    const int next = descriptor->firstCell + size;
    rowsInUse--;
    temporaryCount -= descriptor->owner == ownedTemporarily;
    descriptor->owner = 0;
    if (next < cellsUsed) {
        std::memmove(pool.get() + descriptor->firstCell, pool.get() + next,
                     static_cast<std::size_t>(cellsUsed - next) * sizeof(double));
        for (int i = 0; i < rowsUsed; i++) {
            if (table[i].owner != 0 && table[i].firstCell >= next) table[i].firstCell -= size;
        }
    }
    cellsUsed -= size;
}

double &matrixElement(MatrixDescriptor *descriptor, int col, int row) {
    if (descriptor != nullptr && col >= 0 && col < descriptor->cols && row >= 0 && row < descriptor->rows)
        return matrixElements(descriptor)[row * descriptor->cols + col];
    if (descriptor == nullptr) {
        dimError();
    } else {
        argError();
    }
    spareElement = 0;
    return spareElement;
}

double *matrixElements(const MatrixDescriptor *descriptor) { return pool.get() + descriptor->firstCell; }

int matrixSize(const MatrixDescriptor *descriptor) { return descriptor->cols * descriptor->rows; }

void matrixFill(double value, MatrixDescriptor *descriptor) {
    std::fill_n(matrixElements(descriptor), matrixSize(descriptor), value);
}

void matrixAssign(std::int32_t owner, MatrixSlot &slot, const MatrixDescriptor *source) {
    if (slot == source) return;
    matrixFree(slot);
    slot = matrixCopy(owner, source);
}

void matrixRenew(std::int32_t owner, MatrixSlot &slot, int cols, int rows) {
    matrixFree(slot);
    slot = matrixAllocate(owner, cols, rows);
}

bool matrixAugment(std::int32_t owner, MatrixSlot &slot, const MatrixDescriptor *left, const MatrixDescriptor *right) {
    if (left->rows != right->rows) {
        dimError();
        return false;
    }
    MatrixDescriptor *joined = matrixAllocate(owner, left->cols + right->cols, left->rows);
    double *target = matrixElements(joined);
    const double *fromLeft = matrixElements(left), *fromRight = matrixElements(right);
    for (int row = 0; row < joined->rows; row++, fromLeft += left->cols, fromRight += right->cols) {
        target = std::copy_n(fromLeft, left->cols, target);
        target = std::copy_n(fromRight, right->cols, target);
    }
    matrixFree(slot);  // only now: it may be left or right
    slot = joined;
    return true;
}

void freeTemporaries() {
    borrowedCells = borrowedRows = 0;
    if (temporaryCount == 0) return;
    for (int i = rowsUsed - 1; i >= 0; i--) {  // those made last first: they lie at the pool's end, where nothing moves
        if (table[i].owner == ownedTemporarily) matrixFree(&table[i]);
    }
    machine.matrixSlots[matrixDisplaySlot] = nullptr;
}

TemporariesOfOnePass::TemporariesOfOnePass()
    : countBefore(temporaryCount), borrowedCellsBefore(borrowedCells), borrowedRowsBefore(borrowedRows) {
    for (int i = 0; countBefore > 0 && i < rowsUsed; i++)
        were[static_cast<std::size_t>(i)] = table[i].owner == ownedTemporarily;
}

TemporariesOfOnePass::~TemporariesOfOnePass() {
    borrowedCells = borrowedCellsBefore;
    borrowedRows = borrowedRowsBefore;
    for (int i = rowsUsed - 1; i >= 0 && temporaryCount > countBefore; i--) {
        if (table[i].owner == ownedTemporarily && !were[static_cast<std::size_t>(i)]) matrixFree(&table[i]);
    }
}

int poolCellsUsed() { return cellsUsed; }

int matrixRowsOwned(std::int32_t owner) {
    return static_cast<int>(
        std::count_if(table, table + rowsUsed, [owner](const MatrixDescriptor &row) { return row.owner == owner; }));
}

}  // namespace numalink
