// Invariants of the pool, true between any two operations:
//   (1) The cells in use are exactly those from 0 to cellsUsed.
//   (2) The rows of the table in use cover them without gap or overlap, in any order.
//   (3) A row never moves; its cells may. So a pointer to a cell dies with the next free.
#include "emulator/arrays.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "emulator/errors.h"
#include "settings/tell_user.h"

namespace numalink {

namespace {

constexpr int tableFullText = 54, poolFullText = 55;

// All of this is the active run thread's, as the machine is.
std::unique_ptr<double[]> pool;  // taken at the first run, kept to the end of the process
int cellsUsed = 0;
MatrixDescriptor table[matrixRowLimit];
int rowsUsed = 0;        // rows from here on have never been in use since the reset
int temporaryCount = 0;  // rows owned temporarily

MatrixDescriptor emptyArray;  // what an exhausted machine hands out
double spareElement = 0;      // what a place outside of every array reads and writes

bool isTableRow(const MatrixDescriptor *descriptor) { return descriptor >= table && descriptor < table + rowsUsed; }

MatrixDescriptor *refuse(int textNumber) {
    if (!machine.exhausted) {
        machine.exhausted = true;
        failWith(textNumber);
    }
    emptyArray = {};
    return &emptyArray;
}

MatrixDescriptor *freeRow() {
    for (int i = 0; i < rowsUsed; i++) {
        if (table[i].owner == 0) return &table[i];
    }
    return rowsUsed < matrixRowLimit ? &table[rowsUsed] : nullptr;
}

}  // namespace

void poolReset() {
    if (pool == nullptr) pool = std::make_unique<double[]>(poolCellLimit);
    cellsUsed = 0;
    rowsUsed = 0;
    temporaryCount = 0;
    std::fill(std::begin(table), std::end(table), MatrixDescriptor{});
}

MatrixDescriptor *matrixAllocate(std::int32_t owner, int cols, int rows) {
    cols = std::max(cols, 0);
    rows = std::max(rows, 0);
    if (std::int64_t{cols} * rows > poolCellLimit - cellsUsed) return refuse(poolFullText);
    MatrixDescriptor *descriptor = freeRow();
    if (descriptor == nullptr) return refuse(tableFullText);
    *descriptor = {cols, rows, cellsUsed, owner};
    rowsUsed = std::max(rowsUsed, static_cast<int>(descriptor - table) + 1);
    temporaryCount += owner == ownedTemporarily;
    std::fill_n(pool.get() + cellsUsed, cols * rows, 0.0);
    cellsUsed += cols * rows;
    return descriptor;
}

void matrixFree(MatrixDescriptor *descriptor) {
    if (!isTableRow(descriptor) || descriptor->owner == 0) return;
    const int size = matrixSize(descriptor);
    const int next = descriptor->firstCell + size;
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
    matrixRenew(owner, slot, source->cols, source->rows);
    if (matrixSize(slot) == matrixSize(source))  // not so when the machine is exhausted
        std::copy_n(matrixElements(source), matrixSize(source), matrixElements(slot));
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
    for (int row = 0; row < joined->rows; row++) {
        double *target = matrixElements(joined) + row * joined->cols;
        target = std::copy_n(matrixElements(left) + row * left->cols, left->cols, target);
        std::copy_n(matrixElements(right) + row * right->cols, right->cols, target);
    }
    matrixFree(slot);  // only now: it may be left or right
    slot = joined;
    return true;
}

void freeTemporaries() {
    if (temporaryCount == 0) return;
    for (int i = rowsUsed - 1; i >= 0; i--) {  // those made last first: they lie at the pool's end, where nothing moves
        if (table[i].owner == ownedTemporarily) matrixFree(&table[i]);
    }
    machine.matrixSlots[matrixDisplaySlot] = nullptr;
}

int poolCellsUsed() { return cellsUsed; }

int matrixRowsOwned(std::int32_t owner) {
    return static_cast<int>(
        std::count_if(table, table + rowsUsed, [owner](const MatrixDescriptor &row) { return row.owner == owner; }));
}

}  // namespace numalink
