// Graphs of formulas, as the statements of graphs, sketches, tables and sequences draw them. Run thread.
#pragma once

#include "emulator/expressions/calls.h"
#include "emulator/screens/curves.h"
#include "emulator/statements/statement_rows.h"

namespace numalink {

struct Curve {
    GraphType type = GraphType::equal;
    CallField formula{}, second{};  // second: Y of a parametric one
    PixelColor color = pixelColor::blue;
    LineStyle style = LineStyle::normal;
    bool isWithin = false;  // the range below: of X, T or theta
    double from = 0, to = 0;
};
Curve curveOf(const GraphFunction &function);
inline CallField fieldOf(const FormulaCells &formula) { return {formula.data(), static_cast<int>(formula.size())}; }

// How many values from one on to the other; 0 where the pitch doesn't lead there.
std::int64_t countOfSteps(double from, double to, double pitch);

// Places without a value are left out; a formula that has none anywhere reports. A stop ends it.
void drawCurve(const GraphFrame &frame, const Curve &curve);

inline CurvePen penOf(const GraphFrame &frame, PixelColor color, LineStyle style) {
    return {frame, color, style, !graphs.plotsOnly};
}

// The graph screen as a graph begins on it: cleared, with its axes.
void beginGraph(const GraphFrame &frame);

// The table of the functions selected for it: x, then the columns of each, in F Result. False after a report or a stop.
bool makeTable();
int tableColumns(const GraphFunction &function);  // one; X and Y of a parametric one; with DerivOn the derivative of Y=

// Columns of one length into a matrix of a variable.
void keepColumns(const std::vector<std::vector<double>> &columns, MatrixSlot &slot);

// A statement that is a setting and nothing else.
template <auto member, auto value>
WayOut runSetting(RunState &state) {
    expectAlone(state);
    graphs.*member = value;
    return handled(state);
}

WayOut graphShown(RunState &state);  // handled, with the graph in view

}  // namespace numalink
