// The statements on lists as data: clearing, and what statistics makes of them.
#include <algorithm>
#include <cmath>

#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/named_values.h"
#include "emulator/machine/run_waits.h"
#include "emulator/statements/list_names.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

void clearSlot(MatrixSlot &slot) {
    matrixFree(slot);
    slot = nullptr;
}

// The list of a number, or all those of the file in use.
WayOut runClearList(RunState &state) {
    evaluateRest(state);
    if (state.cellCount == 1) {
        auto &file = machine.listSlots[static_cast<std::size_t>(machine.currentFile)];
        for (std::size_t i = 0; i < listNumberLimit; i++) clearSlot(file[i]);
        return handled(state);
    }
    MatrixSlot *slot = state.cellCount == 2 ? listSlotRef(state.statement, 1) : nullptr;
    if (slot == nullptr) {
        synError();
    } else {
        clearSlot(*slot);
    }
    return handled(state);
}

void leave(Token name, double value) { namedValue(name) = complexReal(value); }

// Where the results of one number stand.
struct MomentNames {
    Token mean, sum, squares, deviation, sampleDeviation, smallest, largest;
};
constexpr Token countName{0xAF}, sumOfProducts{0xDF};
constexpr MomentNames xNames{{0xC2}, {0x9F}, {0x8F}, {0xC4}, {0xC5}, {0xAE}, {0xBE}};
constexpr MomentNames yNames{{0xC3}, {0xCF}, {0xBF}, {0xC6}, {0xC7}, {0xAD}, {0xBD}};
constexpr Token firstQuartile{0x7F, 0x76}, thirdQuartile{0x7F, 0x77}, medianName{0x9E};
constexpr Token coefficientNames[] = {{0xC8}, {0xC9}, {0x7F, 0x1D}, {0x7F, 0x1E}, {0x7F, 0x1F}};
constexpr Token correlationName{0xCA}, determinationName{0x7F, 0xD6}, errorName{0x7F, 0xDD};
constexpr std::uint8_t firstMedianPlace = 0x78;  // behind 0x7F: x1, y1, x2, y2, x3, y3

void leaveMoments(const Sample &sample, const MomentNames &names) {
    const Moments moments = momentsOf(sample);
    const Quartiles quartiles = quartilesOf(sample);
    leave(countName, moments.count);
    leave(names.mean, moments.mean);
    leave(names.sum, moments.sum);
    leave(names.squares, moments.squares);
    leave(names.deviation, std::sqrt(moments.spread));
    leave(names.sampleDeviation, std::isnan(moments.sampleSpread) ? 0 : std::sqrt(moments.sampleSpread));
    leave(names.smallest, quartiles.smallest);
    leave(names.largest, quartiles.largest);
}

void leaveBoth(const ListSample &sample) {
    leaveMoments(sample.ofY(), yNames);
    leaveMoments(sample.ofX(), xNames);
    leave(sumOfProducts, productsOf(sample.ofX(), sample.y).sum);
}

bool isComma(const RunState &state, int cell) {
    return hasCell(state, cell) && isToken(state.statement[cell], token::comma);
}

// The lists of a statement: x, y where there are two numbers, and how often each counts: a list, 1, or nothing. False
// after a report.
bool readOperands(const RunState &state, bool hasY, ListSample &sample) {
    int cell = 1;
    const auto x = takeListName(state, cell);
    bool fits = x.has_value();
    std::optional<std::size_t> y, frequencies;
    if (hasY) {
        fits = fits && isComma(state, cell);
        y = takeListName(state, ++cell);
        fits = fits && y.has_value();
    }
    if (fits && isComma(state, cell)) {
        frequencies = takeListName(state, ++cell);
        if (!frequencies.has_value()) {
            fits = hasCell(state, cell) && isNumber(state.statement[cell]) && numberAt(state, cell) == 1;
            cell++;
        }
    }
    if (!fits || cell != state.cellCount) {
        synError();
        return false;
    }
    return readListSample(*x, y, frequencies, sample);
}

WayOut runOneVariable(RunState &state) {
    ListSample sample;
    if (readOperands(state, false, sample)) {
        leaveMoments(sample.ofX(), xNames);
        const Quartiles quartiles = quartilesOf(sample.ofX());
        leave(firstQuartile, quartiles.first);
        leave(medianName, quartiles.median);
        leave(thirdQuartile, quartiles.third);
        leave(token::mode, modeOf(sample.ofX()));
    }
    return handled(state);
}

WayOut runTwoVariables(RunState &state) {
    ListSample sample;
    if (readOperands(state, true, sample)) leaveBoth(sample);
    return handled(state);
}

void leaveResiduals(const Regression &curve, const ListSample &sample) {
    if (!statisticsMemory.residualList.has_value()) return;
    MatrixSlot &slot = listInFile(*statisticsMemory.residualList);
    matrixRenew(ownedByVariable, slot, 1, static_cast<int>(sample.x.size()));
    double *residuals = matrixElements(slot);
    for (int i = 0; i < matrixSize(slot); i++) {
        const auto place = static_cast<std::size_t>(i);
        residuals[i] = sample.y[place] - curveAt(curve, sample.x[place]);
    }
}

template <RegressionKind kind>
WayOut runCurve(RunState &state) {
    ListSample sample;
    if (readOperands(state, true, sample)) runRegression(kind, sample);
    return handled(state);
}

WayOut runResidualList(RunState &state) {
    int cell = 1;
    const bool isBare =
        state.cellCount == 2 && listSlotRef(state.statement, 1) != nullptr && isNumber(state.statement[1]);
    const auto name = isBare ? std::optional(static_cast<std::size_t>(cutToInteger(numberAt(state, cell++)) - 1))
                             : takeListName(state, cell);
    if (!name.has_value() || cell != state.cellCount) {
        synError();
    } else {
        statisticsMemory.residualList = name;
    }
    return handled(state);
}

WayOut runNoResiduals(RunState &state) {
    expectAlone(state);
    statisticsMemory.residualList.reset();
    return handled(state);
}

constexpr StatementRow rows[] = {
    one({0xF7, 0x1A}, runClearList),                           // ClrList
    one({0xF7, 0x34}, runCurve<RegressionKind::sinusoidal>),   // SinReg
    one({0xF7, 0x36}, runCurve<RegressionKind::logistic>),     // LogisticReg
    one({0xF7, 0x40}, runOneVariable),                         // 1-Variable
    one({0xF7, 0x41}, runTwoVariables),                        // 2-Variable
    one({0xF7, 0x42}, runCurve<RegressionKind::linear>),       // LinearReg
    one({0xF7, 0x43}, runCurve<RegressionKind::medianLine>),   // Med-MedLine
    one({0xF7, 0x44}, runCurve<RegressionKind::quadratic>),    // QuadReg
    one({0xF7, 0x45}, runCurve<RegressionKind::cubic>),        // CubicReg
    one({0xF7, 0x46}, runCurve<RegressionKind::quartic>),      // QuartReg
    one({0xF7, 0x47}, runCurve<RegressionKind::logarithmic>),  // LogReg
    one({0xF7, 0x48}, runCurve<RegressionKind::exponential>),  // ExpReg
    one({0xF7, 0x49}, runCurve<RegressionKind::power>),        // PowerReg
    one({0xF7, 0x76}, runNoResiduals),                         // Resid-None
    one({0xF7, 0x77}, runResidualList),                        // Resid-List
};

}  // namespace

std::optional<std::size_t> takeListName(const RunState &state, int &cell) {
    constexpr std::uint8_t firstShort = 0x6A, lastShort = 0x6F;  // behind 0x7F: List1 to List6
    if (!hasCell(state, cell) || state.statement[cell].kind != CellKind::token) return std::nullopt;
    const ProgramCell &name = state.statement[cell];
    if (name.token1 == 0x7F && name.token2 >= firstShort && name.token2 <= lastShort) {
        cell++;
        return static_cast<std::size_t>(name.token2 - firstShort);
    }
    if (!isToken(name, token::list) || !hasCell(state, cell + 1)) return std::nullopt;
    const MatrixSlot *slot = listSlotRef(state.statement, cell + 1);
    if (slot == nullptr) return std::nullopt;
    cell += 2;
    return static_cast<std::size_t>(slot - &listInFile(0));
}

bool readListSample(std::size_t x, std::optional<std::size_t> y, std::optional<std::size_t> frequencies,
                    ListSample &sample) {
    const auto copy = [&sample](std::size_t place, std::vector<double> &elements) {
        const MatrixDescriptor *list = listInFile(place);
        if (list == nullptr) return false;
        elements.assign(matrixElements(list), matrixElements(list) + matrixSize(list));
        return !elements.empty() && elements.size() == sample.x.size();
    };
    copy(x, sample.x);
    if (sample.x.empty() || (y.has_value() && !copy(*y, sample.y)) ||
        (frequencies.has_value() && !copy(*frequencies, sample.weights))) {
        dimError();
        return false;
    }
    const auto counts = [](double weight) { return weight >= 0 && std::isfinite(weight); };
    const auto countsMore = [](double weight) { return weight > 0; };
    if (sample.weights.empty() ||
        (std::ranges::all_of(sample.weights, counts) && std::ranges::any_of(sample.weights, countsMore)))
        return true;
    maError();
    return false;
}

const Regression *runRegression(RegressionKind kind, const ListSample &sample) {
    leaveBoth(sample);
    statisticsMemory.curve = fitCurve(kind, sample.points(), runGoesOn);
    if (!statisticsMemory.curve.has_value()) {
        maError();
        return nullptr;
    }
    const Regression &curve = *statisticsMemory.curve;
    for (std::size_t i = 0; i < curve.coefficients.size(); i++) leave(coefficientNames[i], curve.coefficients[i]);
    leave(correlationName, curve.correlation);
    leave(determinationName, curve.determination);
    leave(errorName, curve.meanSquareError);
    for (std::size_t i = 0; i < curve.medians.size(); i++)
        leave({0x7F, static_cast<std::uint8_t>(firstMedianPlace + i)}, curve.medians[i]);
    leaveResiduals(curve, sample);
    return &curve;
}

std::span<const StatementRow> statisticsStatements() { return rows; }

}  // namespace numalink
