// The statements of function graphs: what is stored, selected and how it looks, and what is drawn.
#include <algorithm>

#include "drawing/matrix_picture.h"
#include "emulator/expressions/calculus.h"
#include "emulator/expressions/sampled_function.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/named_values.h"
#include "emulator/machine/programs.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/screen_number.h"
#include "emulator/statements/graph_drawing.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

WayOut runGridOn(RunState &state) {
    expectAlone(state);
    machine.gridSwitch = true;
    graphs.showsGrid = true;
    return handled(state);
}

// The factors of zooming in X and, unless it is the same, in Y.
WayOut runFactor(RunState &state) {
    evaluateRest(state);
    const bool isPair = state.cellCount == 4;
    expectShape(state, isPair ? 4 : 2, isPair ? "n,n" : "n");
    namedValue({0x7F, 0x0B}) = complexReal(numberAt(state, 1));
    namedValue({0x7F, 0x0C}) = complexReal(numberAt(state, isPair ? 3 : 1));
    return handled(state);
}

// The function of the number behind the statement; null after a report.
GraphFunction *functionTold(RunState &state) {
    evaluateRest(state);
    expectShape(state, 2, "n");
    if (!hasCell(state, 1)) return nullptr;
    GraphFunction *function = graphFunction(numberAt(state, 1));
    if (function == nullptr) argError();
    return function;
}

template <auto member, auto value>
WayOut runOfFunction(RunState &state) {
    if (GraphFunction *function = functionTold(state)) function->*member = value;
    return handled(state);
}

// Without a number of all functions.
template <bool GraphFunction::*member, bool isSelected>
WayOut runSelect(RunState &state) {
    if (state.cellCount > 1) return runOfFunction<member, isSelected>(state);
    for (GraphFunction &function : graphs.functions) function.*member = isSelected;
    return handled(state);
}

// One function alone is dynamic.
WayOut runSelectDynamic(RunState &state) {
    GraphFunction *function = functionTold(state);
    if (function == nullptr) return handled(state);
    for (GraphFunction &other : graphs.functions) other.isDynamic = false;
    function->isDynamic = true;
    return handled(state);
}

// A literal number, as those of pictures and windows; other numbers than those of the memories do nothing.
GraphMemory *memoryTold(RunState &state) {
    expectShape(state, 2, "n");
    const int index = cutToInteger(numberAt(state, 1)) - 1;
    return index >= 0 && index < memoryCount ? &graphs.memories[static_cast<std::size_t>(index)] : nullptr;
}

WayOut runStoreGraphs(RunState &state) {
    if (GraphMemory *memory = memoryTold(state)) *memory = {graphs.functions, machine.window};
    return handled(state);
}

WayOut runRecallGraphs(RunState &state) {
    if (const GraphMemory *memory = memoryTold(state)) {
        graphs.functions = memory->functions;
        machine.window = memory->window;
        clearScreen();
    }
    return handled(state);
}

void drawSelected(const GraphFrame &frame) {
    drawAxes(frame);
    for (const GraphFunction &function : graphs.functions) {
        if (function.inGraph && isComplete(function)) drawCurve(frame, curveOf(function));
    }
}

// The table of the dual screen in the right half.
void drawTableBeside() {
    if (!makeTable()) return;
    Surface half(displayWidth / 2 - 1, displayHeight);
    const MatrixDescriptor &result = *graphs.tableResult;
    drawMatrix(half, {.columns = result.cols,
                      .rows = result.rows,
                      .values = {matrixElements(&result), static_cast<std::size_t>(matrixSize(&result))}});
    for (int y = 0; y < half.height; y++) {
        for (int x = 0; x < half.width; x++) putPixel(displayWidth / 2 + 1 + x, y, pixelColorOf(dotAt(half, x, y)));
    }
}

WayOut runDrawGraph(RunState &state) {
    expectAlone(state);
    clearScreen();
    if (graphs.dual == DualScreen::off) {
        drawSelected(wholeFrame());
        return graphShown(state);
    }
    drawSelected(leftFrame());
    drawParting();
    if (graphs.dual == DualScreen::graphs) {
        drawSelected(rightFrame());
    } else {
        drawTableBeside();
    }
    return graphShown(state);
}

GraphFrame frameInUse() { return graphs.dual == DualScreen::off ? wholeFrame() : leftFrame(); }

// "[from,to]" as the last field of a graph. False after Syn ERROR.
bool takeRange(const CallField &field, Curve &curve) {
    CallField ends[2];
    const bool isClosed = field.count > 0 && isToken(field.cells[field.count - 1], token::closeBracket);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): splitting only reads
    const CallArguments inside{const_cast<ProgramCell *>(field.cells), 1, field.count - (isClosed ? 2 : 1)};
    ComplexValue from, to;
    if (field.count < 1 || !isToken(field.cells[0], token::openBracket) || splitFields(inside, ends) != 2) {
        synError();
        return false;
    }
    if (!fieldValue(ends[0], from) || !fieldValue(ends[1], to)) return false;
    curve.isWithin = true;
    curve.from = from.re;
    curve.to = to.re;
    return true;
}

Curve curveTold(const RunState &state, GraphType type) {
    return {.type = type, .color = state.color, .style = graphs.sketchStyle};
}

void drawTold(const Curve &curve) {
    const GraphFrame frame = frameInUse();
    drawAxes(frame);
    drawCurve(frame, curve);
}

// Formula and, unless all of it is drawn, a range.
template <GraphType type>
WayOut runGraph(RunState &state) {
    CallField fields[2];
    const int count = splitFields({state.statement, 1, state.cellCount - 1}, fields);
    Curve curve = curveTold(state, type);
    curve.formula = fields[0];
    if (count > 2) synError();
    if (count < 2 || takeRange(fields[1], curve)) drawTold(curve);
    return graphShown(state);
}

// Graph(X,Y)=(X,Y), with the range ahead of the closing parenthesis or behind it.
WayOut runGraphParametric(RunState &state) {
    CallField fields[3];
    int depth = 1, end = 1;
    for (; end < state.cellCount; end++) {
        const ProgramCell &cell = state.statement[end];
        if (cell.kind != CellKind::token) continue;
        if (factsOf(cell).opening != Opening::none) depth++;
        if (isToken(cell, token::closeParenthesis) && --depth == 0) break;
    }
    int count = splitFields({state.statement, 1, end - 1}, fields);
    const int behind = end + 2;
    if (count == 2 && behind < state.cellCount && isToken(state.statement[end + 1], token::comma)) {
        fields[2] = {state.statement + behind, state.cellCount - behind};
        count = 3;
    }
    Curve curve = curveTold(state, GraphType::parametric);
    curve.formula = fields[0];
    curve.second = fields[1];
    if (count != 2 && count != 3) synError();
    if (count == 2 || (count == 3 && takeRange(fields[2], curve))) drawTold(curve);
    return graphShown(state);
}

// The area between the curve and the axis, with its integral below.
void drawArea(const Curve &curve, double from, double to) {
    const GraphFrame frame = frameInUse();
    drawAxes(frame);
    drawCurve(frame, curve);
    SampledFunction function(curve.formula, &machine.variables['X' - 'A']);
    for (int column = 1; column <= frame.width && hasSize(frame); column++) {
        const double x = columnX(frame, column);
        double y = 0;
        if (x < std::min(from, to) || x > std::max(from, to)) continue;
        if (!function.at(x, y)) return;
        shadeColumn(frame, column, rowOf(frame, 0), rowOf(frame, y), curve.color);
    }
    const CalculusResult result = integral([&function](double x, double &y) { return function.at(x, y); }, from, to);
    if (result.end == CalculusEnd::none && !function.tellIfNowhere()) maError();
    if (result.end == CalculusEnd::found) {
        graphCaption(
            "\x8D"
            "dx=" +
                numberText(result.y, machine.format),
            pixelColor::blue);
    }
}

WayOut runGraphIntegral(RunState &state) {
    CallField fields[3];
    const int count = splitFields({state.statement, 1, state.cellCount - 1}, fields);
    Curve curve = curveTold(state, GraphType::equal);
    curve.formula = fields[0];
    ComplexValue from, to;
    if (count != 3) {
        synError();
    } else if (fieldValue(fields[1], from) && fieldValue(fields[2], to)) {
        drawArea(curve, from.re, to.re);
    }
    return graphShown(state);
}

// The line through the curve's point at a place, in the direction that the slope gives.
template <bool isNormal>
WayOut runLineAtCurve(RunState &state) {
    CallField fields[2];
    const int count = splitFields({state.statement, 1, state.cellCount - 1}, fields);
    ComplexValue place;
    if (count != 2) synError();
    if (count != 2 || !fieldValue(fields[1], place)) return graphShown(state);
    SampledFunction function(fields[0], &machine.variables['X' - 'A']);
    const RealFunction values = [&function](double x, double &y) { return function.at(x, y); };
    const double x = place.re;
    double y = 0;
    const CalculusResult slope = derivative(values, x);
    if (slope.end == CalculusEnd::none && !function.tellIfNowhere()) maError();
    if (slope.end != CalculusEnd::found || !values(x, y)) return graphShown(state);
    const GraphFrame frame = frameInUse();
    CurvePen pen(frame, state.sketchColor, graphs.sketchStyle, true);
    if (isNormal && slope.y == 0) {
        pen.to(x, frame.yLow);
        pen.to(x, frame.yHigh);
        return graphShown(state);
    }
    const double rise = isNormal ? -1 / slope.y : slope.y;
    for (int column = 1; column <= frame.width; column++) pen.toColumn(column, y + rise * (columnX(frame, column) - x));
    return graphShown(state);
}

// The formula's graph with X and Y in each other's place.
WayOut runInverse(RunState &state) {
    const GraphFrame frame = frameInUse();
    SampledFunction function({state.statement + 1, state.cellCount - 1}, &machine.variables['X' - 'A']);
    CurvePen pen = penOf(frame, state.sketchColor, graphs.sketchStyle);
    for (int row = displayHeight - 1; row >= 0; row--) {
        double x = 0;
        if (!function.at(rowY(frame, row), x)) return graphShown(state);
        pen.to(x, rowY(frame, row));
    }
    function.tellIfNowhere();
    return graphShown(state);
}

using enum GraphType;
using Function = GraphFunction;
using Settings = GraphSettings;

constexpr StatementRow rows[] = {
    one({0x7F, 0x31}, runSetting<&Settings::sketchColor, pixelColor::orange>),  // P/L-Orange
    one({0x7F, 0x32}, runSetting<&Settings::sketchColor, pixelColor::blue>),    // P/L-Blue
    one({0x7F, 0x33}, runSetting<&Settings::sketchColor, pixelColor::green>),   // P/L-Green
    one({0x7F, 0x37}, runOfFunction<&Function::color, pixelColor::orange>),     // OrangeG
    one({0x7F, 0x38}, runOfFunction<&Function::color, pixelColor::blue>),       // BlueG
    one({0x7F, 0x39}, runOfFunction<&Function::color, pixelColor::green>),      // GreenG
    one({0xEA}, runFactor),                                                     // Factor
    one({0xEE}, runGraph<equal>),                                               // Graph Y=
    one({0xEF}, runGraphIntegral),                                              // Graph integral
    one({0xF0}, runGraph<above>),                                               // Graph Y>
    one({0xF1}, runGraph<below>),                                               // Graph Y<
    one({0xF2}, runGraph<fromOn>),                                              // Graph Y>=
    one({0xF3}, runGraph<upTo>),                                                // Graph Y<=
    one({0xF4}, runGraph<polar>),                                               // Graph r=
    one({0xF5}, runGraphParametric),                                            // Graph(X,Y)=(
    one({0xF7, 0x1C}, runSetting<&Settings::sketchStyle, LineStyle::normal>),
    one({0xF7, 0x1D}, runSetting<&Settings::sketchStyle, LineStyle::thick>),
    one({0xF7, 0x1E}, runSetting<&Settings::sketchStyle, LineStyle::broken>),
    one({0xF7, 0x1F}, runSetting<&Settings::sketchStyle, LineStyle::dotted>),
    one({0xF7, 0x20}, runDrawGraph),                                        // DrawGraph
    one({0xF7, 0x2B}, runOfFunction<&Function::style, LineStyle::normal>),  // NormalG
    one({0xF7, 0x2C}, runOfFunction<&Function::style, LineStyle::thick>),   // ThickG
    one({0xF7, 0x2D}, runOfFunction<&Function::style, LineStyle::broken>),  // BrokenThickG
    one({0xF7, 0x3F}, runOfFunction<&Function::style, LineStyle::dotted>),  // DotG
    one({0xF7, 0x62}, runGraph<upright>),                                   // Graph X=
    one({0xF7, 0x63}, runSetting<&Settings::newType, equal>),               // Y=Type
    one({0xF7, 0x64}, runSetting<&Settings::newType, polar>),               // r=Type
    one({0xF7, 0x65}, runSetting<&Settings::newType, parametric>),          // ParamType
    one({0xF7, 0x67}, runSetting<&Settings::newType, upright>),             // X=cType
    one({0xF7, 0x6A}, runSetting<&Settings::newType, above>),               // Y>Type
    one({0xF7, 0x6B}, runSetting<&Settings::newType, below>),               // Y<Type
    one({0xF7, 0x6C}, runSetting<&Settings::newType, fromOn>),              // Y>=Type
    one({0xF7, 0x6D}, runSetting<&Settings::newType, upTo>),                // Y<=Type
    one({0xF7, 0x70}, runSetting<&Settings::plotsOnly, false>),             // G-Connect
    one({0xF7, 0x71}, runSetting<&Settings::plotsOnly, true>),              // G-Plot
    one({0xF7, 0x72}, runSetting<&Settings::dual, DualScreen::graphs>),     // DualGraph
    range({0xF7, 0x73}, {0xF7, 0x74}, runSetting<&Settings::dual, DualScreen::graphAndTable>),
    one({0xF7, 0x75}, runSetting<&Settings::dual, DualScreen::off>),  // DualOff
    one({0xF7, 0x7D}, runGridOn),                                     // GridOn
    one({0xF7, 0x95}, runStoreGraphs),                                // StoGMEM
    one({0xF7, 0x96}, runRecallGraphs),                               // RclGMEM
    one({0xF7, 0xA0}, runLineAtCurve<false>),                         // Tangent
    one({0xF7, 0xA1}, runLineAtCurve<true>),                          // Normal
    one({0xF7, 0xA2}, runInverse),                                    // Inverse
    range({0xF7, 0xBE}, {0xF7, 0xBF}, handled),                       // Y=DrawSpeed: as the run
    one({0xF7, 0xC8}, runSelect<&Function::inGraph, true>),           // G SelOn
    one({0xF7, 0xC9}, runSelect<&Function::inTable, true>),           // T SelOn
    one({0xF7, 0xCA}, runSelectDynamic),                              // D SelOn
    one({0xF7, 0xD8}, runSelect<&Function::inGraph, false>),          // G SelOff
    one({0xF7, 0xD9}, runSelect<&Function::inTable, false>),          // T SelOff
    one({0xF7, 0xDA}, runSelect<&Function::isDynamic, false>),        // D SelOff
};

}  // namespace

std::span<const StatementRow> graphStatements() { return rows; }

// A function that wasn't there is selected for graphs and tables; an older one stays as it was.
bool storesFormula(RunState &state) {
    if (!hasCell(state, 3) || state.cellCount != 4 || !isToken(state.statement[1], token::arrow)) return false;
    const FunctionName name = functionNameOf(state.statement[2]);
    if (name == FunctionName::none || !isNumber(state.statement[3])) return false;
    GraphFunction *function = graphFunction(numberAt(state, 3));
    if (function == nullptr) {
        argError();
        return true;
    }
    constexpr GraphType typesOfNames[] = {equal, polar, parametric, parametric, upright};
    const bool wasEmpty = function->formula.empty() && function->second.empty();
    const GraphType type = namesType(name, graphs.newType) ? graphs.newType : typesOfNames[static_cast<int>(name)];
    if (type != function->type) {
        function->formula.clear();
        function->second.clear();
    }
    function->type = type;
    (name == FunctionName::yt ? function->second : function->formula) = cellsOfString(state.statement[0]);
    if (wasEmpty) function->inGraph = function->inTable = true;
    return true;
}

}  // namespace numalink
