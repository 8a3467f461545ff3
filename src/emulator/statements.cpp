// The statement table in its order of testing, and the way from a statement's first cell to its row.
#include "emulator/statements.h"

#include <array>

#include "emulator/display.h"
#include "emulator/errors.h"
#include "emulator/evaluator.h"
#include "emulator/runner.h"
#include "emulator/statement_rows.h"

namespace numalink {

namespace {

WayOut runProg(RunState &state) {
    const bool fits = state.cellCount == 2 && state.statement[1].kind == CellKind::string;
    if (!fits) synError();
    if (hasCell(state, 1) && state.statement[1].kind == CellKind::string) callProgram(valueText(state.statement[1]));
    return handled(state);
}

WayOut runStop(RunState &state) {
    expectAlone(state);
    return WayOut::programEnds;
}

// The token stays, for the bare expression to do nothing with it.
WayOut runFile(RunState &state) {
    expectAlone(state);
    machine.currentFile = state.statement[0].token2 - 0xB8;
    return WayOut::goesOn;
}

template <bool value>
WayOut runGridSwitch(RunState &state) {
    expectAlone(state);
    machine.gridSwitch = value;
    return handled(state);
}

template <int firstToken, bool value>
WayOut runGraphSwitch(RunState &state) {
    expectAlone(state);
    machine.graphSwitches[static_cast<std::size_t>(state.statement[0].token2 - firstToken)] = value;
    return handled(state);
}

constexpr StatementRow one(Token token, const char *name, WayOut (*run)(RunState &)) {
    return {token, token, CellKind::token, name, run};
}
constexpr StatementRow range(Token first, Token last, const char *name, WayOut (*run)(RunState &)) {
    return {first, last, CellKind::token, name, run};
}

constexpr StatementRow rows[] = {
    one({0x27}, "comment", handled),
    range({0xD9}, {0xDD}, "mode command", handled),
    one({0xE2}, "Lbl", handled),
    one({0xE8}, "Dsz", runDsz),
    one({0xE9}, "Isz", runIsz),
    one({0xEB}, "ViewWindow", runViewWindow),
    one({0xEC}, "Goto", runGoto),
    range({0x7F, 0x34}, {0x7F, 0x36}, "Orange, Blue, Green", runColor),
    one({0x7F, 0x47}, "Fill(", runFill),
    one({0xD1}, "Cls", runCls),
    one({0xE0}, "Plot", runPlot),
    one({0xE1}, "Line", runLine),
    {{}, {}, CellKind::string, "string", runString},
    one({0xED}, "Prog", runProg),
    one({0xF7, 0x00}, "If", runIf),
    one({0xF7, 0x02}, "Else", runElse),
    one({0xF7, 0x04}, "For", runFor),
    one({0xF7, 0x07}, "Next", runNext),
    one({0xF7, 0x08}, "While", runWhile),
    one({0xF7, 0x09}, "WhileEnd", runWhileEnd),
    one({0xF7, 0x0A}, "Do", handled),
    one({0xF7, 0x0B}, "LpWhile", runLoopWhile),
    range({0xF7, 0x0D}, {0xF7, 0x0E}, "Stop", runStop),
    one({0xF7, 0x10}, "Locate", runLocate),
    one({0xF7, 0x18}, "ClrText", runClearText),
    one({0xF7, 0x19}, "ClrGraph", runClearGraph),
    one({0xF7, 0x78}, "BG-None", runNoBackground),
    one({0xF7, 0x79}, "BG-Pict", runBackground),
    one({0xF7, 0x7A}, "grid switch on", runGridSwitch<true>),
    one({0xF7, 0x7B}, "grid switch off", runGridSwitch<false>),
    one({0xF7, 0x93}, "StoPict", runStorePicture),
    one({0xF7, 0x94}, "RclPict", runRecallPicture),
    one({0xF7, 0x97}, "StoV-Win", runStoreWindow),
    one({0xF7, 0x98}, "RclV-Win", runRecallWindow),
    one({0xF7, 0xA3}, "Vertical", runVertical),
    one({0xF7, 0xA4}, "Horizontal", runHorizontal),
    one({0xF7, 0xA5}, "Text", runText),
    one({0xF7, 0xA6}, "Circle", runCircle),
    one({0xF7, 0xA7}, "F-Line", runFLine),
    one({0xF7, 0xA8}, "PlotOn", runPlot),
    one({0xF7, 0xA9}, "PlotOff", runPlotOff),
    one({0xF7, 0xAA}, "PlotChg", runPlotChange),
    one({0xF7, 0xAB}, "PxlOn", runPixelOn),
    one({0xF7, 0xAC}, "PxlOff", runPixelOff),
    one({0xF7, 0xAD}, "PxlChg", runPixelChange),
    one({0xF7, 0xAF}, "PxlTest", runPixelTest),
    range({0xF7, 0xB8}, {0xF7, 0xBD}, "File", runFile),
    range({0xF7, 0xC0}, {0xF7, 0xC5}, "switch on", runGraphSwitch<0xC0, true>),
    range({0xF7, 0xD0}, {0xF7, 0xD5}, "switch off", runGraphSwitch<0xD0, false>),
};
constexpr int rowCount = static_cast<int>(std::size(rows));
constexpr std::int8_t noRow = -1;
static_assert(rowCount < 127);

// The row of each token: a block for single bytes, one behind 0x7F, one behind 0xF7.
struct RowIndex {
    std::array<std::int8_t, 3 * 256> rowOf{};
    std::int8_t ofString = noRow;
};

constexpr std::size_t placeOf(std::uint8_t first, std::uint8_t second) {
    if (first == 0x7F) return 256u + second;
    if (first == 0xF7) return 512u + second;
    return first;
}

constexpr RowIndex makeIndex() {
    RowIndex index;
    index.rowOf.fill(noRow);
    for (int i = 0; i < rowCount; i++) {
        const auto number = static_cast<std::int8_t>(i);
        if (rows[i].kind == CellKind::string) {
            index.ofString = number;
            continue;
        }
        const std::size_t last = placeOf(rows[i].last.first, rows[i].last.second);
        for (std::size_t place = placeOf(rows[i].token.first, rows[i].token.second); place <= last; place++)
            index.rowOf[place] = number;
    }
    return index;
}
constexpr RowIndex rowIndex = makeIndex();

int rowOf(const ProgramCell &cell) {
    if (cell.kind == CellKind::token) return rowIndex.rowOf[placeOf(cell.token1, cell.token2)];
    return cell.kind == CellKind::string ? rowIndex.ofString : noRow;
}

}  // namespace

std::span<const StatementRow> statementRows() { return rows; }

WayOut runStatement(RunState &state) {
    int tested = noRow;
    while (state.cellCount > 0) {
        const int row = rowOf(state.statement[0]);
        if (row <= tested) break;
        tested = row;
        const WayOut way = rows[row].run(state);
        if (way != WayOut::goesOn) return way;
    }
    const int condition = findToken(token::then, state.statement, 0, state.cellCount);
    if (condition >= 0) return runCondition(state, condition);
    const int arrow = findToken(token::arrow, state.statement, 0, state.cellCount);
    return arrow >= 0 ? runAssignment(state, arrow) : WayOut::goesOn;
}

WayOut takePrefix(RunState &state) {
    makeBlank(state.statement[0]);
    compactCells(state.statement, 0, state.cellCount);
    return WayOut::goesOn;
}

void evaluateAll(RunState &state) { evaluate(state.statement, 0, state.cellCount); }

void evaluateRest(RunState &state) {
    int count = state.cellCount - 1;
    evaluate(state.statement, 1, count);
    state.cellCount = count + 1;
}

bool hasShape(const RunState &state, int first, const char *shape) {
    for (int i = first; *shape != '\0'; i++, shape++) {
        if (!hasCell(state, i)) return false;
        const ProgramCell &cell = state.statement[i];
        const bool fits = *shape == ',' ? isToken(cell, token::comma)
                                        : isNumber(cell) || (*shape == 'v' && cell.kind == CellKind::string);
        if (!fits) return false;
    }
    return true;
}

void expectShape(const RunState &state, int count, const char *shape) {
    if ((count != anyCount && state.cellCount != count) || !hasShape(state, 1, shape)) synError();
}

void expectAlone(const RunState &state) {
    if (state.cellCount != 1) synError();
}

}  // namespace numalink
