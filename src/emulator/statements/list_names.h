// Lists as statements name them, unevaluated, and the samples that statistics makes of them. Run thread.
#pragma once

#include <optional>
#include <vector>

#include "emulator/machine/statistics_memory.h"
#include "emulator/numerics/sample_statistics.h"
#include "emulator/statements/statement_rows.h"

namespace numalink {

// The list that the cells from cell on name, as its place in a file, from 0: List and a number, or one of List1 to
// List6. Moves cell behind the name. None, and cell as it was, where there is no such name.
std::optional<std::size_t> takeListName(const RunState &state, int &cell);

inline MatrixSlot &listInFile(std::size_t place) {
    return machine.listSlots[static_cast<std::size_t>(machine.currentFile)][place];
}

// Copies of lists. y is empty for a sample of one number, weights where each counts once.
struct ListSample {
    std::vector<double> x, y, weights;

    Sample ofX() const { return {x, weights}; }
    Sample ofY() const { return {y, weights}; }
    Points points() const { return {x, y, weights}; }
};

// False after a report: Dim ERROR for a list that doesn't exist, or another length than that of x, Ma  ERROR where
// nothing counts or a frequency lies below 0.
bool readListSample(std::size_t x, std::optional<std::size_t> y, std::optional<std::size_t> frequencies,
                    ListSample &sample);

// Fits the curve and leaves its results, those of both numbers and, where Resid-List told so, the residuals. Ma  ERROR
// and nullptr where the sample doesn't decide a curve.
const Regression *runRegression(RegressionKind kind, const ListSample &sample);

}  // namespace numalink
