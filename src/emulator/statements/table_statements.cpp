// The statements of number tables and of dynamic graphs: one function at many values.
#include <algorithm>

#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/screen_number.h"
#include "emulator/statements/graph_drawing.h"
#include "emulator/statements/statement_groups.h"
#include "text/token_table.h"

namespace numalink {

namespace {

constexpr std::uint8_t varRange = 0x88, beforeFirstVarList = 0xB1;

// Tables go by start, end and pitch, or by the elements of a list.
WayOut runVarList(RunState &state) {
    expectAlone(state);
    const std::uint8_t which = state.statement[0].token2;
    graphs.listOfX = which == varRange ? 0 : which - beforeFirstVarList;
    return handled(state);
}

WayOut runShowTable(RunState &state) {
    expectAlone(state);
    if (makeTable()) displayValue(arrayCell(CellKind::matrix, graphs.tableResult), pixelColor::blue);
    return handled(state);
}

// The rows of the table as points, each column with its function's looks.
void drawTable(bool joins) {
    const GraphFrame frame = wholeFrame();
    drawAxes(frame);
    const MatrixDescriptor &table = *graphs.tableResult;
    const double *elements = matrixElements(&table);
    const auto value = [&](int row, int column) { return elements[row * table.cols + column]; };
    int column = 1;
    for (const GraphFunction &function : graphs.functions) {
        if (!function.inTable || !isComplete(function)) continue;
        CurvePen pen(frame, function.color, function.style, joins);
        const bool isPair = function.type == GraphType::parametric;
        for (int row = 0; row < table.rows && column + isPair < table.cols; row++)
            pen.to(value(row, isPair ? column : 0), value(row, isPair ? column + 1 : column));
        column += tableColumns(function);
    }
}

template <bool joins>
WayOut runDrawTable(RunState &state) {
    expectAlone(state);
    if (makeTable()) drawTable(joins);
    return graphShown(state);
}

WayOut runDynamicVariable(RunState &state) {
    const bool fits = state.cellCount == 2 && variableRef(state.statement[1]) != nullptr;
    if (!fits) synError();
    if (fits) graphs.dynamicVariable = {state.statement[1].token1, state.statement[1].token2};
    return handled(state);
}

const GraphFunction *dynamicFunction() {
    for (const GraphFunction &function : graphs.functions) {
        if (function.isDynamic && isComplete(function)) return &function;
    }
    return nullptr;
}

// Between two values of the variable. False when the run doesn't go on.
bool waitForNextValue() {
    constexpr int passesOf[] = {40, 0, 80};  // of an input: normal, fast, slow
    if (graphs.dynamicSpeed != DynamicSpeed::byKey) {
        for (int i = 0; i < passesOf[static_cast<int>(graphs.dynamicSpeed)] && workGoesOn(); i++)
            waitPassPace(paceUnits::inputPass);
        return runGoesOn();
    }
    keyCode = 0;
    for (;;) {
        const int key = waitPassKey(RunEnd::triangle);
        if (key == noKeyAnyMore) return false;
        clearKey(key);
        if (key == executeKey) return true;
        waitPassPace(paceUnits::inputPass);
    }
}

std::string nameOfVariable(Token variable) {
    const std::uint8_t bytes[] = {variable.first, variable.second};
    std::string_view text;
    tokenToText(ByteView(bytes, isTwoByteLead(variable.first) ? 2 : 1), text);
    return std::string(text);
}

// The graph at one value of the variable.
bool showDynamic(const GraphFunction &function, double value, std::size_t &captionLength) {
    const GraphFrame frame = wholeFrame();
    if (!graphs.keepsLocus) clearScreen();
    drawAxes(frame);
    drawCurve(frame, curveOf(function));
    std::string caption = nameOfVariable(graphs.dynamicVariable) + "=" + numberText(value, machine.format);
    captionLength = std::max(captionLength, caption.size());
    caption.resize(captionLength, ' ');  // over a longer one, where graphs stay
    graphCaption(caption, pixelColor::blue);
    setScreenMode(graphMode);
    refreshScreen(false);
    return runGoesOn() && !machine.errorFlag && waitForNextValue();
}

WayOut runDrawDynamic(RunState &state) {
    constexpr int passes = 10;
    expectAlone(state);
    const GraphFunction *function = dynamicFunction();
    ComplexValue *variable = variableRef(tokenCell(graphs.dynamicVariable));
    const double start = variableRef(tokenCell({0x7F, 0x0D}))->re, end = variableRef(tokenCell({0x7F, 0x0E}))->re;
    const double pitch = variableRef(tokenCell({0x7F, 0x0F}))->re;
    const std::int64_t count = countOfSteps(start, end, pitch);
    if (function == nullptr || variable == nullptr || count == 0) {
        argError();
        return graphShown(state);
    }
    clearScreen();
    std::size_t captionLength = 0;
    for (int pass = 0; graphs.dynamicGoesOn || pass < passes; pass++) {
        for (std::int64_t i = 0; i < count; i++) {
            *variable = complexReal(start + static_cast<double>(i) * pitch);
            if (!showDynamic(*function, variable->re, captionLength)) return graphShown(state);
        }
    }
    return graphShown(state);
}

using Settings = GraphSettings;

constexpr StatementRow rows[] = {
    one({0xF7, 0x22}, runDrawDynamic),                                             // DrawDyna
    one({0xF7, 0x24}, runDrawTable<true>),                                         // DrawFTG-Con
    one({0xF7, 0x25}, runDrawTable<false>),                                        // DrawFTG-Plt
    one({0xF7, 0x2E}, runShowTable),                                               // DispF-Tbl
    one({0xF7, 0x80}, runDynamicVariable),                                         // D Var
    one({0xF7, 0x81}, runSetting<&Settings::dynamicSpeed, DynamicSpeed::normal>),  // NrmSpeed
    one({0xF7, 0x82}, runSetting<&Settings::dynamicSpeed, DynamicSpeed::fast>),    // FastSpeed
    one({0xF7, 0x83}, runSetting<&Settings::dynamicSpeed, DynamicSpeed::slow>),    // SlowSpeed
    one({0xF7, 0x84}, runSetting<&Settings::dynamicSpeed, DynamicSpeed::byKey>),   // Stop&Go
    one({0xF7, 0x85}, runSetting<&Settings::dynamicGoesOn, true>),                 // DynaCon
    one({0xF7, 0x86}, runSetting<&Settings::dynamicGoesOn, false>),                // DynaStop
    one({0xF7, varRange}, runVarList),                                             // VarRange
    range({0xF7, 0xB2}, {0xF7, 0xB7}, runVarList),                                 // VarList
    one({0xF7, 0xC6}, runSetting<&Settings::keepsLocus, true>),                    // LocusOn
    one({0xF7, 0xD6}, runSetting<&Settings::keepsLocus, false>),                   // LocusOff
};

}  // namespace

std::span<const StatementRow> tableStatements() { return rows; }

}  // namespace numalink
