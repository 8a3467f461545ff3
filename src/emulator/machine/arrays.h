// Matrices and lists: one pool of doubles, one table of rows that describe it. Run thread.
#pragma once

#include <bitset>

#include "emulator/machine/machine.h"

namespace numalink {

// Takes the pool from the system at the first call of the process, then empties pool and table. Slots aren't touched.
void poolReset();

// The first free row of the table, its elements 0.0. Columns first: a list of n elements is (owner, 1, n). A size
// below 0 counts as 0. When table or pool gives out: a box once a run, machine.exhausted is set,
// and the result is an empty array outside of the table, which every operation here accepts.
MatrixDescriptor *matrixAllocate(std::int32_t owner, int cols, int rows);

// A copy with the elements of source; the same when table or pool gives out.
MatrixDescriptor *matrixCopy(std::int32_t owner, const MatrixDescriptor *source);

// An expression that only reads an element of a variable's array needs no copy of it. Borrowing counts the copy that
// isn't made against table and pool until the next freeTemporaries, so that both give out where they would with it;
// false when that copy wouldn't fit. Unborrowing makes it after all.
bool matrixBorrow(const MatrixDescriptor *source);
MatrixDescriptor *matrixUnborrow(const MatrixDescriptor *source);

// Whether so many arrays of so many elements in sum would still fit table and pool.
bool matrixCopiesFit(std::int64_t elements, int arrays);

// Frees the row and closes the gap in the pool. A row that isn't in use, or null, is left alone.
void matrixFree(MatrixDescriptor *descriptor);

// The element at a column and row from 0. Null reports Dim ERROR, a place outside Arg  ERROR; the reference is then to
// a spare element that belongs to no array and reads as 0. Dies with the next allocation or free.
double &matrixElement(MatrixDescriptor *descriptor, int col, int row);
// All elements, row by row, for copies in one go. The same life.
double *matrixElements(const MatrixDescriptor *descriptor);
int matrixSize(const MatrixDescriptor *descriptor);  // elements

void matrixFill(double value, MatrixDescriptor *descriptor);

// Puts a copy of source under owner in the slot, freeing what stood there.
void matrixAssign(std::int32_t owner, MatrixSlot &slot, const MatrixDescriptor *source);
// Puts a new array of the given size in the slot, all 0.0, freeing what stood there.
void matrixRenew(std::int32_t owner, MatrixSlot &slot, int cols, int rows);
// Puts the columns of left, then those of right, in the slot, freeing what stood there. Different row counts: Dim
// ERROR, false, and nothing changes.
bool matrixAugment(std::int32_t owner, MatrixSlot &slot, const MatrixDescriptor *left, const MatrixDescriptor *right);

// Frees every temporary; the display slot is empty afterwards. Costs next to nothing when there is none.
void freeTemporaries();

// The table with its counts, beside the elements in use from poolElements on: for bringing a machine back as it was.
struct PoolRecords {
    std::array<MatrixDescriptor, matrixRowLimit> table{};
    int cellsUsed = 0, rowsUsed = 0, rowsInUse = 0, temporaryCount = 0, borrowedCells = 0, borrowedRows = 0;
};
PoolRecords poolRecords();
const double *poolElements();
// Without elements those in the pool stay: the records are then from a moment since which nothing was freed.
void poolRestore(const PoolRecords &records, const double *elements = nullptr);

// The place of a row in the table, from 0; -1 for null and for what is no row. The row at a place 0 to
// matrixRowLimit - 1, in use or not.
int matrixRowOf(const MatrixDescriptor *descriptor);
MatrixDescriptor *matrixRowAt(int place);

// Frees the temporaries made while it lives, and gives back what was borrowed: for an expression that is evaluated many
// times within one statement.
class TemporariesOfOnePass {
public:
    TemporariesOfOnePass();
    ~TemporariesOfOnePass();
    TemporariesOfOnePass(const TemporariesOfOnePass &) = delete;
    TemporariesOfOnePass &operator=(const TemporariesOfOnePass &) = delete;

private:
    std::bitset<matrixRowLimit> were;  // the rows that are others' temporaries
    int countBefore, borrowedCellsBefore, borrowedRowsBefore;
};

int poolCellsUsed();
int matrixRowsOwned(std::int32_t owner);  // rows of the table with that owner

}  // namespace numalink
