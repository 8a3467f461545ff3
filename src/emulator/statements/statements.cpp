// The statement table in its order of testing, which counts behind prefixes, and the way from a statement's first cell
// to its row.
#include "emulator/statements/statements.h"

#include <array>
#include <vector>

#include "emulator/expressions/evaluator.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/screens/display.h"
#include "emulator/statements/statement_groups.h"
#include "emulator/statements/statement_rows.h"

namespace numalink {

namespace {

WayOut runProg(RunState &state) {
    const bool fits = state.cellCount == 2 && state.statement[1].kind == CellKind::string;
    if (!fits) synError();
    if (hasCell(state, 1) && state.statement[1].kind == CellKind::string)
        state.callProgram(valueText(state.statement[1]));
    return handled(state);
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
    graphs.showsGrid = false;  // GridOff has the byte pair that turns the switch on
    return handled(state);
}

constexpr int axesSwitch = 2;

template <int firstToken, bool value>
WayOut runGraphSwitch(RunState &state) {
    expectAlone(state);
    const int number = state.statement[0].token2 - firstToken;
    machine.graphSwitches[static_cast<std::size_t>(number)] = value;
    if (number == axesSwitch) graphs.hidesAxes = !value;
    return handled(state);
}

constexpr StatementRow rows[] = {
    one({0x27}, handled),                                            // comment
    range({0xD9}, {0xDD}, runMode),                                  // mode command
    one({0xE2}, handled),                                            // Lbl
    one({0xE8}, runDsz),                                             // Dsz
    one({0xE9}, runIsz),                                             // Isz
    one({0xEB}, runViewWindow),                                      // ViewWindow
    one({0xEC}, runGoto),                                            // Goto
    range({0x7F, 0x34}, {0x7F, 0x36}, runColor),                     // Orange, Blue, Green
    one({0x7F, 0x47}, runFill),                                      // Fill(
    one({0xD1}, runCls),                                             // Cls
    one({0xE0}, runPlace),                                           // Plot
    one({0xE1}, runLine),                                            // Line
    {{}, {}, CellKind::string, runString},                           // a string
    one({0xED}, runProg),                                            // Prog
    one({0xF7, 0x00}, runIf),                                        // If
    one({0xF7, 0x02}, runElse),                                      // Else
    one({0xF7, 0x04}, runFor),                                       // For
    one({0xF7, 0x07}, runNext),                                      // Next
    one({0xF7, 0x08}, runWhile),                                     // While
    one({0xF7, 0x09}, runWhileEnd),                                  // WhileEnd
    one({0xF7, 0x0A}, handled),                                      // Do
    one({0xF7, 0x0B}, runLoopWhile),                                 // LpWhile
    one({0xF7, 0x0D}, runBreak),                                     // Break
    one({0xF7, 0x0E}, runStop),                                      // Stop
    one({0xF7, 0x10}, runLocate),                                    // Locate
    one({0xF7, 0x18}, runClearText),                                 // ClrText
    one({0xF7, 0x19}, runClearGraph),                                // ClrGraph
    one({0xF7, 0x78}, runNoBackground),                              // BG-None
    one({0xF7, 0x79}, runBackground),                                // BG-Pict
    one({0xF7, 0x7A}, runGridSwitch<true>),                          // grid switch on
    one({0xF7, 0x7B}, runGridSwitch<false>),                         // grid switch off
    one({0xF7, 0x93}, runStorePicture),                              // StoPict
    one({0xF7, 0x94}, runRecallPicture),                             // RclPict
    one({0xF7, 0x97}, runStoreWindow),                               // StoV-Win
    one({0xF7, 0x98}, runRecallWindow),                              // RclV-Win
    one({0xF7, 0xA3}, runVertical),                                  // Vertical
    one({0xF7, 0xA4}, runHorizontal),                                // Horizontal
    one({0xF7, 0xA5}, runText),                                      // Text
    one({0xF7, 0xA6}, runCircle),                                    // Circle
    one({0xF7, 0xA7}, runFLine),                                     // F-Line
    range({0xF7, 0xA8}, {0xF7, 0xAD}, runPlace),                     // PlotOn to PxlChg
    one({0xF7, 0xAF}, runPixelTest),                                 // PxlTest
    range({0xF7, 0xB8}, {0xF7, 0xBD}, runFile),                      // File
    range({0xF7, 0xC0}, {0xF7, 0xC5}, runGraphSwitch<0xC0, true>),   // switch on
    range({0xF7, 0xD0}, {0xF7, 0xD5}, runGraphSwitch<0xD0, false>),  // switch off
};

constexpr std::int16_t noRow = -1;

std::span<const StatementRow> basicStatements() { return rows; }

// The tables in their order of testing, which counts behind prefixes: all later ones take a prefix of the first.
constexpr std::span<const StatementRow> (*groups[])() = {
    basicStatements, flowStatements,       modeStatements,      memoryStatements, lineStatements,
    graphStatements, statisticsStatements, recursionStatements, arrayStatements,  statisticsGraphStatements,
    tableStatements};

// The rows one after the other, and of each token the number of its row: a block for single bytes, one behind 0x7F, one
// behind 0xF7.
struct RowIndex {
    std::vector<const StatementRow *> rows;
    std::array<std::int16_t, std::size_t{3} * 256> rowOf{};
    std::int16_t ofString = noRow;
};

constexpr std::size_t placeOf(std::uint8_t first, std::uint8_t second) {
    if (first == 0x7F) return 256u + second;
    if (first == 0xF7) return 512u + second;
    return first;
}

RowIndex makeIndex() {
    RowIndex index;
    index.rowOf.fill(noRow);
    for (const auto group : groups) {
        for (const StatementRow &row : group()) {
            const auto number = static_cast<std::int16_t>(index.rows.size());
            index.rows.push_back(&row);
            if (row.kind == CellKind::string) {
                index.ofString = number;
                continue;
            }
            const std::size_t last = placeOf(row.last.first, row.last.second);
            for (std::size_t place = placeOf(row.first.first, row.first.second); place <= last; place++)
                index.rowOf[place] = number;
        }
    }
    return index;
}
const RowIndex rowIndex = makeIndex();

int rowOf(const ProgramCell &cell) {
    if (cell.kind == CellKind::token) return rowIndex.rowOf[placeOf(cell.token1, cell.token2)];
    return cell.kind == CellKind::string ? rowIndex.ofString : noRow;
}

}  // namespace

bool isStatementWord(const ProgramCell &cell) { return rowOf(cell) != noRow; }

WayOut runStatement(RunState &state) {
    int tested = noRow;
    while (state.cellCount > 0) {
        const int row = rowOf(state.statement[0]);
        if (row <= tested) break;
        tested = row;
        const WayOut way = rowIndex.rows[static_cast<std::size_t>(row)]->run(state);
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

void expectShape(RunState &state, int count, const char *shape) {
    if ((count == anyCount || state.cellCount == count) && hasShape(state, 1, shape)) return;
    synError();
    for (int i = state.statementLength; i <= longestShape; i++) state.statement[i] = {};
}

void expectAlone(const RunState &state) {
    if (state.cellCount != 1) synError();
}

}  // namespace numalink
