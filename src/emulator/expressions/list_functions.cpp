// The functions of lists: smallest to largest, means and spreads with frequencies, sums and shares.
#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

#include "emulator/expressions/array_functions.h"
#include "emulator/expressions/calls.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/numerics/sample_statistics.h"

namespace numalink {

namespace {

std::span<double> elementsOf(const MatrixDescriptor *list) {
    return {matrixElements(list), static_cast<std::size_t>(matrixSize(list))};
}

// A number beyond the calculators' range, or none, reports.
ProgramCell boundNumber(double value) {
    return std::fabs(value) <= largestResult ? numberCell(complexReal(value)) : refusedCall(maError);
}

// One list, or two of one length with a comma between.
struct ListArguments {
    const MatrixDescriptor *first = nullptr;
    const MatrixDescriptor *second = nullptr;  // null where there is one alone
};

bool readLists(const CallArguments &arguments, ListArguments &lists) {
    const int count = evaluateArguments(arguments);
    const ProgramCell *cells = arguments.cells + arguments.first;
    const auto isList = [cells](int i) { return cells[i].kind == CellKind::list; };
    const bool fits =
        (count == 1 && isList(0)) || (count == 3 && isList(0) && isToken(cells[1], token::comma) && isList(2));
    if (!fits) {
        synError();
        return false;
    }
    lists.first = cells[0].matrix;
    if (count == 3) lists.second = cells[2].matrix;
    if (lists.second == nullptr || matrixSize(lists.second) == matrixSize(lists.first)) return true;
    dimError();
    return false;
}

// The outermost of one list; of two, the list of the outer ones of each place.
template <bool (*isFurther)(double, double)>
ProgramCell outermost(const CallArguments &arguments) {
    ListArguments lists;
    if (!readLists(arguments, lists)) return numberCell({});
    if (lists.second == nullptr) {
        const auto elements = elementsOf(lists.first);
        if (elements.empty()) return refusedCall(dimError);
        return numberCell(complexReal(
            *std::max_element(elements.begin(), elements.end(), [](double a, double b) { return isFurther(b, a); })));
    }
    MatrixDescriptor *result = matrixCopy(ownedTemporarily, lists.first);
    const auto others = elementsOf(lists.second);
    const auto elements = elementsOf(result);
    for (std::size_t i = 0; i < elements.size(); i++) {
        if (isFurther(others[i], elements[i])) elements[i] = others[i];
    }
    return arrayCell(CellKind::list, result);
}
bool isLess(double a, double b) { return a < b; }
bool isGreater(double a, double b) { return a > b; }

double meanOf(const Sample &sample) { return momentsOf(sample).mean; }
double sampleDeviationOf(const Sample &sample) { return std::sqrt(momentsOf(sample).sampleSpread); }
double sampleSpreadOf(const Sample &sample) { return momentsOf(sample).sampleSpread; }

// Of a list of values, or of one of values and one of how often each counts.
template <double (*measure)(const Sample &)>
ProgramCell measured(const CallArguments &arguments) {
    ListArguments lists;
    if (!readLists(arguments, lists)) return numberCell({});
    Sample sample{elementsOf(lists.first), {}};
    if (lists.second != nullptr) sample.weights = elementsOf(lists.second);
    if (!std::ranges::all_of(sample.weights, [](double weight) { return weight >= 0; })) return refusedCall(maError);
    return boundNumber(measure(sample));
}

// The list behind the prefix at p; null after Syn ERROR.
const MatrixDescriptor *listOperand(const ProgramCell *cells, int p) {
    if (cells[p + 1].kind == CellKind::list) return cells[p + 1].matrix;
    synError();
    return nullptr;
}

// Makes the prefix and its operand one cell.
void finishPrefix(ProgramCell *cells, int p, const ProgramCell &result) {
    cells[p] = result;
    makeBlank(cells[p + 1]);
}

void evaluateProd(ProgramCell *cells, int p) {
    const MatrixDescriptor *list = listOperand(cells, p);
    if (list == nullptr) return finishPrefix(cells, p, numberCell({}));
    const auto elements = elementsOf(list);
    finishPrefix(cells, p, boundNumber(std::accumulate(elements.begin(), elements.end(), 1.0, std::multiplies<>())));
}

template <void (*change)(std::span<double>)>
void evaluateChanged(ProgramCell *cells, int p) {
    const MatrixDescriptor *list = listOperand(cells, p);
    if (list == nullptr) return finishPrefix(cells, p, numberCell({}));
    MatrixDescriptor *result = matrixCopy(ownedTemporarily, list);
    change(elementsOf(result));
    finishPrefix(cells, p, arrayCell(CellKind::list, result));
}

void cumulate(std::span<double> elements) { std::partial_sum(elements.begin(), elements.end(), elements.begin()); }

// Each element in hundredths of the sum.
void takePercentages(std::span<double> elements) {
    constexpr double whole = 100;
    const double sum = std::accumulate(elements.begin(), elements.end(), 0.0);
    if (sum == 0 && !elements.empty()) return maError();
    for (double &element : elements) element = element / sum * whole;
}

// What each element is above the one before, of the list itself or of the one with that number.
void evaluateDifferences(ProgramCell *cells, int p) {
    const ProgramCell &operand = cells[p + 1];
    const MatrixDescriptor *list = operand.kind == CellKind::list ? operand.matrix : nullptr;
    if (list == nullptr) {
        const MatrixSlot *slot = listSlotRef(cells, p + 1);
        if (slot == nullptr) {
            synError();
        } else if (*slot == nullptr) {
            dimError();
        } else {
            list = *slot;
        }
    }
    if (list == nullptr) return finishPrefix(cells, p, numberCell({}));
    if (matrixSize(list) < 2) {
        dimError();
        return finishPrefix(cells, p, numberCell({}));
    }
    MatrixDescriptor *result = matrixAllocate(ownedTemporarily, 1, matrixSize(list) - 1);
    const auto elements = elementsOf(list);
    const auto differences = elementsOf(result);
    for (std::size_t i = 0; i < differences.size(); i++) differences[i] = elements[i + 1] - elements[i];
    finishPrefix(cells, p, arrayCell(CellKind::list, result));
}

constexpr OperatorRow rows[] = {
    call({0x7F, 0x20}, "Max(", outermost<isGreater>),
    call({0x7F, 0x2D}, "Min(", outermost<isLess>),
    call({0x7F, 0x2E}, "Mean(", measured<meanOf>),
    call({0x7F, 0x2F}, "Median(", measured<medianOf>),
    call({0x7F, 0x3E}, "StdDev(", measured<sampleDeviationOf>),
    call({0x7F, 0x3F}, "Variance(", measured<sampleSpreadOf>),
    call({0x7F, 0x99}, "Min(", outermost<isLess>),

    onArrays({0x7F, 0x4D}, "Prod", evaluateProd),
    onArrays({0x7F, 0x4E}, "Percent", evaluateChanged<takePercentages>),
    onArrays({0x7F, 0x4F}, "Cuml", evaluateChanged<cumulate>),
    onArrays({0x7F, 0x52}, "differences", evaluateDifferences),
};
static_assert(stepsRise(rows));

}  // namespace

std::span<const OperatorRow> listRows() { return rows; }

}  // namespace numalink
