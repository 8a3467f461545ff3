#include "emulator/statements/graph_drawing.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "emulator/expressions/angles.h"
#include "emulator/expressions/calculus.h"
#include "emulator/expressions/sampled_function.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/screens/graph_screen.h"

namespace numalink {

namespace {

ComplexValue *variableX() { return &machine.variables['X' - 'A']; }
ComplexValue *variableT() { return &machine.variables['T' - 'A']; }
ComplexValue *theta() { return &machine.variables[variableTheta]; }

bool isStrict(GraphType type) { return type == GraphType::above || type == GraphType::below; }
bool isUpward(GraphType type) { return type == GraphType::above || type == GraphType::fromOn; }

// From beyond the top to beyond the bottom, or back.
bool passesThrough(const GraphFrame &frame, double before, double now) {
    const double low = std::min(frame.yLow, frame.yHigh), high = std::max(frame.yLow, frame.yHigh);
    return (before < low && now > high) || (before > high && now < low);
}

// A pole isn't steep: halfway, its function lies beyond both sides.
bool isSteep(SampledFunction &function, double x, double before, double now, bool &goesOn) {
    double halfway = 0;
    goesOn = function.at(x, halfway);
    return (halfway - before) * (now - halfway) > 0;
}

// Y =, and what is shaded above or below it.
void drawOverX(const GraphFrame &frame, const Curve &curve) {
    SampledFunction function(curve.formula, variableX());
    CurvePen pen = penOf(frame, curve.color, isStrict(curve.type) ? LineStyle::dotted : curve.style);
    double before = 0;
    bool hasBefore = false;
    const double columnWidth = columnX(frame, 2) - columnX(frame, 1);
    for (int column = 1; column <= frame.width; column++) {
        const double x = columnX(frame, column);
        if (curve.isWithin && (x < curve.from || x > curve.to)) {
            pen.lift();
            hasBefore = false;
            continue;
        }
        double y = 0;
        bool goesOn = function.at(x, y);
        if (!goesOn) return;
        if (isInequality(curve.type) && std::isfinite(y)) {
            const double beyondEdge = isStrict(curve.type) ? 1 : 0;  // the dotted edge stays in sight
            const double row = rowOf(frame, y);
            isUpward(curve.type) ? shadeColumn(frame, column, 0, row - beyondEdge, curve.color)
                                 : shadeColumn(frame, column, displayHeight, row + beyondEdge, curve.color);
        }
        if (hasBefore && passesThrough(frame, before, y) && !isSteep(function, x - columnWidth / 2, before, y, goesOn))
            pen.lift();
        if (!goesOn) return;
        pen.toColumn(column, y);
        before = y;
        hasBefore = std::isfinite(y);
    }
    function.tellIfNowhere();
}

// The steps of T or theta: the curve's own range, else the window's. None after a report.
struct Steps {
    double from = 0, pitch = 0;
    std::int64_t count = 0;
    double at(std::int64_t i) const { return from + static_cast<double>(i) * pitch; }
};
Steps stepsOf(const GraphFrame &frame, const Curve &curve) {
    const double from = curve.isWithin ? curve.from : frame.tLow;
    const double to = curve.isWithin ? curve.to : frame.tHigh;
    const double pitch = frame.tPitch;
    const std::int64_t count = countOfSteps(from, to, pitch);
    if (count == 0) argError();
    return {from, pitch, count};
}

void drawPolar(const GraphFrame &frame, const Curve &curve) {
    SampledFunction function(curve.formula, theta());
    CurvePen pen = penOf(frame, curve.color, curve.style);
    const Steps steps = stepsOf(frame, curve);
    for (std::int64_t i = 0; i < steps.count; i++) {
        const double angle = steps.at(i);
        double r = 0;
        if (!function.at(angle, r)) return;
        const double radians = angle * radiansPerUnit(machine.angleUnit);
        pen.to(r * std::cos(radians), r * std::sin(radians));
    }
    if (steps.count > 0) function.tellIfNowhere();
}

void drawParametric(const GraphFrame &frame, const Curve &curve) {
    SampledFunction ofX(curve.formula, variableT());
    SampledFunction ofY(curve.second, variableT());
    CurvePen pen = penOf(frame, curve.color, curve.style);
    const Steps steps = stepsOf(frame, curve);
    for (std::int64_t i = 0; i < steps.count; i++) {
        double x = 0, y = 0;
        if (!ofX.at(steps.at(i), x) || !ofY.at(steps.at(i), y)) return;
        pen.to(x, y);
    }
    if (steps.count > 0 && !ofX.tellIfNowhere()) ofY.tellIfNowhere();
}

void drawUpright(const GraphFrame &frame, const Curve &curve) {
    ComplexValue x;
    if (!fieldValue(curve.formula, x)) return;
    CurvePen pen(frame, curve.color, curve.style, true);
    pen.to(x.re, frame.yLow);
    pen.to(x.re, frame.yHigh);
}

constexpr int tableRowLimit = elementLimit;

// The places of a table's rows. False after a report.
bool tableRows(std::vector<double> &rows) {
    if (graphs.listOfX > 0) {
        const MatrixDescriptor *list =
            machine
                .listSlots[static_cast<std::size_t>(machine.currentFile)][static_cast<std::size_t>(graphs.listOfX - 1)];
        if (list == nullptr) {
            dimError();
            return false;
        }
        rows.assign(matrixElements(list), matrixElements(list) + matrixSize(list));
    } else {
        const double start = variableRef(tokenCell({0x7F, 0x91}))->re, end = variableRef(tokenCell({0x7F, 0x92}))->re;
        const double pitch = variableRef(tokenCell({0x7F, 0x93}))->re;
        const std::int64_t count = countOfSteps(start, end, pitch);
        if (count == 0 || count > tableRowLimit) {
            argError();
            return false;
        }
        for (int i = 0; i < count; i++) rows.push_back(start + i * pitch);
    }
    return true;
}

constexpr int derivativeSwitch = 5;
bool showsDerivatives(const GraphFunction &function) {
    return machine.graphSwitches[derivativeSwitch] && namesType(FunctionName::y, function.type);
}

// The derivatives behind the values. A place that has none leaves no number.
bool takeDerivatives(const FormulaCells &formula, const std::vector<double> &rows,
                     std::vector<std::vector<double>> &columns) {
    SampledFunction function(fieldOf(formula), variableX());
    std::vector<double> &values = columns.emplace_back();
    for (const double x : rows) {
        const CalculusResult slope = derivative([&](double at, double &y) { return function.at(at, y); }, x);
        if (slope.end == CalculusEnd::stopped) return false;
        values.push_back(slope.end == CalculusEnd::found ? slope.y : std::numeric_limits<double>::quiet_NaN());
    }
    return true;
}

bool takeColumn(const FormulaCells &formula, ComplexValue *variable, const std::vector<double> &rows,
                std::vector<std::vector<double>> &columns) {
    SampledFunction function(fieldOf(formula), variable);
    std::vector<double> &values = columns.emplace_back();
    for (const double x : rows) {
        if (!function.at(x, values.emplace_back())) return false;
    }
    return !function.tellIfNowhere();
}

bool takeColumns(const GraphFunction &function, const std::vector<double> &rows,
                 std::vector<std::vector<double>> &columns) {
    switch (function.type) {
        case GraphType::polar:
            return takeColumn(function.formula, theta(), rows, columns);
        case GraphType::parametric:
            return takeColumn(function.formula, variableT(), rows, columns) &&
                   takeColumn(function.second, variableT(), rows, columns);
        default:
            return takeColumn(function.formula, variableX(), rows, columns) &&
                   (!showsDerivatives(function) || takeDerivatives(function.formula, rows, columns));
    }
}

}  // namespace

int tableColumns(const GraphFunction &function) {
    return function.type == GraphType::parametric || showsDerivatives(function) ? 2 : 1;
}

Curve curveOf(const GraphFunction &function) {
    return {function.type, fieldOf(function.formula), fieldOf(function.second), function.color, function.style};
}

std::int64_t countOfSteps(double from, double to, double pitch) {
    constexpr double limit = 1e15;
    if (from == to) return 1;
    const double count = std::floor((to - from) / pitch + 1e-9) + 1;
    return count >= 1 && count <= limit ? static_cast<std::int64_t>(count) : 0;
}

void drawCurve(const GraphFrame &frame, const Curve &curve) {
    if (!hasSize(frame)) return;
    switch (curve.type) {
        case GraphType::polar:
            return drawPolar(frame, curve);
        case GraphType::parametric:
            return drawParametric(frame, curve);
        case GraphType::upright:
            return drawUpright(frame, curve);
        default:
            return drawOverX(frame, curve);
    }
}

void beginGraph(const GraphFrame &frame) {
    clearScreen();
    drawAxes(frame);
}

bool makeTable() {
    std::vector<double> rows;
    if (!tableRows(rows)) return false;
    std::vector<std::vector<double>> columns{rows};
    for (const GraphFunction &function : graphs.functions) {
        const bool isTaken = function.inTable && isComplete(function);
        if (isTaken && !takeColumns(function, rows, columns)) return false;
    }
    if (columns.size() == 1) {
        argError();  // no function is selected
        return false;
    }
    keepColumns(columns, graphs.tableResult);
    return true;
}

void keepColumns(const std::vector<std::vector<double>> &columns, MatrixSlot &slot) {
    const auto width = static_cast<int>(columns.size()), height = static_cast<int>(columns[0].size());
    matrixRenew(ownedByVariable, slot, width, height);
    if (matrixSize(slot) != width * height) return;
    double *elements = matrixElements(slot);
    for (std::size_t row = 0; row < columns[0].size(); row++) {
        for (const std::vector<double> &column : columns) *elements++ = column[row];
    }
}

WayOut graphShown(RunState &state) {
    setScreenMode(graphMode);
    return handled(state);
}

}  // namespace numalink
