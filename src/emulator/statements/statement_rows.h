// What the files of the statement table share. Only they include this.
#pragma once

#include "emulator/machine/cells.h"
#include "emulator/statements/run_state.h"
#include "emulator/statements/statements.h"

namespace numalink {

struct StatementRow {
    Token first, last;                // a run of tokens, or the same one twice
    CellKind kind = CellKind::token;  // string: the row of a string
    WayOut (*run)(RunState &state) = nullptr;
};
constexpr StatementRow one(Token token, WayOut (*run)(RunState &)) { return {token, token, CellKind::token, run}; }
constexpr StatementRow range(Token first, Token last, WayOut (*run)(RunState &)) {
    return {first, last, CellKind::token, run};
}

// Nothing is left of the statement.
inline WayOut handled(RunState &state) {
    makeBlank(state.statement[0]);
    state.cellCount = 0;
    return WayOut::handled;
}

// Cell 0 goes, and what is left is tried against the later rows.
WayOut takePrefix(RunState &state);

void evaluateAll(RunState &state);   // the command's token stays in cell 0
void evaluateRest(RunState &state);  // from cell 1 on

// Whether the cells from first on are as told: n a number, v a number or a string, "," a comma. All within cellCount.
bool hasShape(const RunState &state, int first, const char *shape);
// Syn ERROR unless the cells from 1 on are so; count is cellCount then, or anyCount. The row goes on in any case, on
// what the cells hold: what the evaluation has left in the statement's own, and 0 behind its end.
inline constexpr int anyCount = 0;
inline constexpr int longestShape = 8;  // cells
void expectShape(RunState &state, int count, const char *shape);
void expectAlone(const RunState &state);  // cellCount 1

inline double numberAt(const RunState &state, int cell) { return state.statement[cell].value.re; }
inline bool hasCell(const RunState &state, int cell) { return cell < state.cellCount; }

// Blocks and jumps.
WayOut runDsz(RunState &state);
WayOut runIsz(RunState &state);
WayOut runGoto(RunState &state);
WayOut runIf(RunState &state);
WayOut runElse(RunState &state);
WayOut runFor(RunState &state);
WayOut runNext(RunState &state);
WayOut runWhile(RunState &state);
WayOut runWhileEnd(RunState &state);
WayOut runLoopWhile(RunState &state);
WayOut runStop(RunState &state);
WayOut runBreak(RunState &state);

// To the label that the cell, a number or a token, names; Go  ERROR and the program's end where there is none.
WayOut goToLabel(RunState &state, const ProgramCell &label);

// Modes.
WayOut runMode(RunState &state);

// Screens.
WayOut runViewWindow(RunState &state);
WayOut runColor(RunState &state);
WayOut runCls(RunState &state);
WayOut runPlace(RunState &state);  // Plot, PlotOn and those that draw at one place
WayOut runLine(RunState &state);
WayOut runString(RunState &state);
WayOut runLocate(RunState &state);
WayOut runClearText(RunState &state);
WayOut runClearGraph(RunState &state);
WayOut runNoBackground(RunState &state);
WayOut runBackground(RunState &state);
WayOut runStorePicture(RunState &state);
WayOut runRecallPicture(RunState &state);
WayOut runStoreWindow(RunState &state);
WayOut runRecallWindow(RunState &state);
WayOut runVertical(RunState &state);
WayOut runHorizontal(RunState &state);
WayOut runText(RunState &state);
WayOut runCircle(RunState &state);
WayOut runFLine(RunState &state);
WayOut runPixelTest(RunState &state);

// A string that is stored as a formula: in a function of the graphs, in a sequence. False where it isn't one of these.
bool storesFormula(RunState &state);
bool storesSequence(RunState &state);

// Values.
WayOut runFill(RunState &state);
WayOut runCondition(RunState &state, int arrow);
WayOut runAssignment(RunState &state, int arrow);

}  // namespace numalink
