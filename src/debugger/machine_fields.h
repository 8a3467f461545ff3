// What the emulated machine consists of, each field once: who writes it down, reads it again or makes a digest of it
// walks along these functions with a visitor of its own, so that none can leave out what another knows. The order is
// that of docs/moment_format.md.
//
// A visitor has, each by reference: real, flag, color, whole (a number in 4 bytes between two bounds), big (8 bytes, up
// to a bound), choice (an enumeration up to its last), byte (up to a bound), length (of a vector, up to a bound), row
// (a slot: null or a row of the MatrixTable), report (the text of one).
#pragma once

#include "emulator/machine/arrays.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/machine/statistics_memory.h"

namespace numalink {

inline constexpr std::uint64_t statementCountLimit = std::uint64_t{1} << 62;

// A field that is added has its line below, or a word on why not, and is then counted here.
struct AnyField {
    template <class Field>
    operator Field() const;  // NOLINT(google-explicit-constructor,hicpp-explicit-conversions): that is its use
};
template <class Record, class... Fields>
consteval std::size_t fieldCount() {
    if constexpr (requires { Record{Fields{}..., AnyField{}}; }) {
        return fieldCount<Record, Fields..., AnyField>();
    } else {
        return sizeof...(Fields);
    }
}
static_assert(fieldCount<EmulatorMachine>() == 27 && fieldCount<NumberFormat>() == 4);
static_assert(fieldCount<GraphSettings>() == 19 && fieldCount<GraphFunction>() == 8 && fieldCount<GraphMemory>() == 2);
static_assert(fieldCount<SequenceFormula>() == 2 && fieldCount<StatisticsMemory>() == 4);
static_assert(fieldCount<StatGraph>() == 8 && fieldCount<Regression>() == 7);
static_assert(fieldCount<PoolRecords>() == 7 && fieldCount<MatrixDescriptor>() == 4);

template <class Visitor>
void visitFields(Visitor &with, ComplexValue &value) {
    with.real(value.re);
    with.real(value.im);
}

template <class Visitor, std::size_t count>
void visitFields(Visitor &with, std::array<ComplexValue, count> &values) {
    for (ComplexValue &value : values) visitFields(with, value);
}

template <class Visitor>
void visitFields(Visitor &with, PlotPoint &point) {
    with.real(point.x);
    with.real(point.y);
}

// All but exhausted, with which no run goes on, and errorTrace, which is its owner's.
template <class Visitor>
void visitFields(Visitor &with, EmulatorMachine &of) {
    visitFields(with, of.variables);
    visitFields(with, of.ans);
    visitFields(with, of.window);
    for (ViewWindow &memory : of.windowMemories) visitFields(with, memory);
    for (MatrixSlot &slot : of.matrixSlots) with.row(slot);
    for (auto &file : of.listSlots) {
        for (MatrixSlot &slot : file) with.row(slot);
    }
    with.flag(of.errorFlag);
    with.report(of.errorText);
    with.whole(of.currentFile, 0, memoryCount - 1);
    with.whole(of.backgroundPicture, 0, memoryCount);
    visitFields(with, of.plotPrevious);
    visitFields(with, of.plotCurrent);
    with.whole(of.textRow, 1, textRowCount);
    with.whole(of.textColumn, -textColumnCount, textColumnCount);
    with.whole(of.screenMode, graphMode, matrixMode);
    with.flag(of.shortCopy);
    for (PixelColor &color : of.rowColor) with.color(color);
    for (bool &isOn : of.graphSwitches) with.flag(isOn);
    with.flag(of.gridSwitch);
    with.flag(of.calculatorModes);
    with.choice(of.angleUnit, AngleUnit::gradians);
    with.choice(of.format.form, NumberForm::scientific);
    with.whole(of.format.digits, 0, 9);
    with.whole(of.format.lowestFixedExponent, -9, -1);
    with.flag(of.format.engineering);
    with.whole(of.numberBase, 2, 16);
    visitFields(with, of.namedValues);
    with.big(of.statementsRun, statementCountLimit);
}

// A cell of a formula: a token or a number.
template <class Visitor>
void visitFields(Visitor &with, ProgramCell &cell) {
    with.choice(cell.kind, CellKind::number);
    with.byte(cell.token1, 0xFF);
    with.byte(cell.token2, 0xFF);
    with.byte(cell.stringLength, 0xFF);
    if (cell.kind == CellKind::number) visitFields(with, cell.value);
}

template <class Visitor>
void visitFields(Visitor &with, FormulaCells &formula) {
    with.length(formula, statementLimit);
    for (ProgramCell &cell : formula) visitFields(with, cell);
}

template <class Visitor>
void visitFields(Visitor &with, GraphFunctions &functions) {
    for (GraphFunction &function : functions) {
        with.choice(function.type, GraphType::upTo);
        visitFields(with, function.formula);
        visitFields(with, function.second);
        with.color(function.color);
        with.choice(function.style, LineStyle::dotted);
        with.flag(function.inGraph);
        with.flag(function.inTable);
        with.flag(function.isDynamic);
    }
}

template <class Visitor>
void visitFields(Visitor &with, GraphSettings &of) {
    visitFields(with, of.functions);
    with.choice(of.newType, GraphType::upTo);
    for (GraphMemory &memory : of.memories) {
        visitFields(with, memory.functions);
        visitFields(with, memory.window);
    }
    with.flag(of.plotsOnly);
    with.flag(of.hidesAxes);
    with.flag(of.showsGrid);
    with.choice(of.sketchStyle, LineStyle::dotted);
    with.color(of.sketchColor);
    with.choice(of.dual, DualScreen::graphAndTable);
    with.whole(of.listOfX, 0, 6);
    with.row(of.tableResult);
    with.row(of.recursionResult);
    with.byte(of.dynamicVariable.first, 0xFF);
    with.byte(of.dynamicVariable.second, 0xFF);
    with.choice(of.dynamicSpeed, DynamicSpeed::byKey);
    with.flag(of.dynamicGoesOn);
    with.flag(of.keepsLocus);
    with.choice(of.sequenceType, SequenceType::threeTerms);
    for (SequenceFormula &sequence : of.sequences) {
        visitFields(with, sequence.formula);
        with.flag(sequence.isSelected);
    }
    with.flag(of.showsSums);
}

// A flag, and what it tells is there.
template <class Visitor, class Value, class Visit>
void visitOptional(Visitor &with, std::optional<Value> &value, Visit visit) {
    bool isThere = value.has_value();
    with.flag(isThere);
    if (isThere != value.has_value()) value = isThere ? std::optional<Value>(Value{}) : std::nullopt;
    if (value.has_value()) visit(*value);
}

template <class Visitor>
void visitFields(Visitor &with, Regression &curve) {
    with.choice(curve.kind, RegressionKind::logistic);
    for (double &coefficient : curve.coefficients) with.real(coefficient);
    for (double &median : curve.medians) with.real(median);
    with.real(curve.correlation);
    with.real(curve.determination);
    with.real(curve.meanSquareError);
    with.flag(curve.hasCorrelation);
}

template <class Visitor>
void visitFields(Visitor &with, StatisticsMemory &of) {
    const auto visitList = [&with](std::size_t &list) { with.whole(list, 0, listSlotCount - 1); };
    visitOptional(with, of.curve, [&with](Regression &curve) { visitFields(with, curve); });
    visitOptional(with, of.residualList, visitList);
    for (StatGraph &graph : of.graphs) {
        with.flag(graph.isOn);
        with.choice(graph.kind, StatGraphKind::regression);
        with.choice(graph.regression, RegressionKind::logistic);
        visitList(graph.xList);
        visitList(graph.yList);
        visitOptional(with, graph.frequencies, visitList);
        with.choice(graph.mark, StatMark::dot);
        with.color(graph.color);
    }
    with.flag(of.fitsWindow);
}

// The counts that follow from the rows aren't among them.
template <class Visitor>
void visitFields(Visitor &with, PoolRecords &of) {
    with.whole(of.cellsUsed, 0, poolCellLimit);
    with.whole(of.rowsUsed, 0, matrixRowLimit);
    for (int i = 0; i < of.rowsUsed; i++) {
        MatrixDescriptor &row = of.table[static_cast<std::size_t>(i)];
        with.whole(row.cols, 0, poolCellLimit);
        with.whole(row.rows, 0, poolCellLimit);
        with.whole(row.firstCell, 0, poolCellLimit);
        with.whole(row.owner, 0, ownedTemporarily);
    }
    with.whole(of.borrowedCells, 0, poolCellLimit);
    with.whole(of.borrowedRows, 0, matrixRowLimit);
}

}  // namespace numalink
