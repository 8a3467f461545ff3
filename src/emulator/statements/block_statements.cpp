// Loops, branches and jumps. There is no stack of blocks: the program, whose cells never change, knows each statement's
// partner.
#include <cmath>

#include "emulator/expressions/evaluator.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/programs.h"
#include "emulator/statements/statement_rows.h"

namespace numalink {

namespace {

bool isEnd(const RunState &state, int at) { return isToken(state.program[at], token::endOfProgram); }

// Where the statement's own token stands in the program: prefixes may stand ahead of it.
int ownCell(const RunState &state) {
    const Token own{state.statement[0].token1, state.statement[0].token2};
    const int at = findToken(own, state.program, state.position, state.statementLength);
    return at < 0 ? state.position : at;
}

int partnerOf(const RunState &state) { return loadedProgram(state.programIndex).partners[ownCell(state)]; }

WayOut jumpTo(RunState &state, int position) {
    state.position = position;
    return WayOut::jump;
}

// Behind a cell that closes a block, and its terminator; onto the end when that stands right behind the cell.
WayOut jumpBehind(RunState &state, int at) { return jumpTo(state, isEnd(state, at + 1) ? at + 1 : at + 2); }

// Behind the statement that the cell belongs to.
WayOut jumpBehindStatement(RunState &state, int at) {
    const int terminator = findTerminator(state.program, at);
    return isEnd(state, terminator) ? jumpTo(state, terminator) : jumpTo(state, terminator + 1);
}

WayOut lostPartner(RunState &state) {
    synError();
    return handled(state);
}

int ownTerminator(const RunState &state) { return state.position + state.statementLength; }

WayOut skipNextStatement(RunState &state) {
    const int terminator = ownTerminator(state);
    if (isEnd(state, terminator)) return WayOut::programEnds;
    const int next = findTerminator(state.program, terminator + 1);
    return isEnd(state, next) ? WayOut::programEnds : jumpTo(state, next + 1);
}

WayOut countVariable(RunState &state, double step) {
    ComplexValue *variable = hasCell(state, 1) ? variableRef(state.statement[1]) : nullptr;
    if (variable == nullptr) return lostPartner(state);
    variable->re += step;
    return variable->re == 0 ? skipNextStatement(state) : handled(state);
}

WayOut takeTrueBranch(RunState &state) {
    const int terminator = ownTerminator(state);
    if (isEnd(state, terminator)) {
        synError();
        return jumpTo(state, terminator);
    }
    const int then = terminator + 1;
    if (!isToken(state.program[then], token::thenWord)) synError();
    return jumpTo(state, isEnd(state, then) ? then : then + 1);
}

WayOut takeFalseBranch(RunState &state) {
    const int at = partnerOf(state);
    if (at == noPartner) return jumpTo(state, 0);
    return isToken(state.program[at], token::elseWord) ? jumpTo(state, at + 1) : jumpBehind(state, at);
}

// A wrong shape counts as false.
bool conditionHolds(RunState &state) {
    evaluateRest(state);
    const bool fits = state.cellCount == 2 && isNumber(state.statement[1]);
    if (!fits) synError();
    return fits && numberAt(state, 1) != 0;
}

struct ForOperands {
    ComplexValue *variable = nullptr;
    double start = 0, end = 0, step = 1;
};

bool readStart(RunState &state) {
    const int arrow = findToken(token::arrow, state.statement, 1, state.cellCount - 1);
    if (arrow < 0) return false;
    int count = arrow;
    evaluate(state.statement, 0, count);
    blankCells(state.statement, count, arrow);
    compactCells(state.statement, 0, state.cellCount);
    return hasCell(state, 2) && isToken(state.statement[2], token::arrow);
}

bool readEndAndStep(RunState &state, ForOperands &operands) {
    int count = state.cellCount - 5;
    if (count <= 0) return false;
    evaluate(state.statement, 5, count);
    state.cellCount = 5 + count;
    const ProgramCell *cells = state.statement;
    if (!isToken(cells[4], token::to) || !hasShape(state, 5, "n")) return false;
    operands.end = cells[5].value.re;
    if (state.cellCount == 6) return true;
    operands.step = cells[7].value.re;
    return isToken(cells[6], token::step) && hasShape(state, 7, "n");
}

bool readFor(RunState &state, ForOperands &operands) {
    if (!readStart(state) || !readEndAndStep(state, operands)) return false;
    operands.start = numberAt(state, 1);
    operands.variable = variableRef(state.statement[3]);
    return operands.variable != nullptr && isNumber(state.statement[1]);
}

}  // namespace

WayOut runDsz(RunState &state) { return countVariable(state, -1); }
WayOut runIsz(RunState &state) { return countVariable(state, 1); }

WayOut runStop(RunState &state) {
    expectAlone(state);
    return WayOut::programEnds;
}

// Out of the innermost loop that it stands in; without calculator modes, and outside of a loop, a stop.
WayOut runBreak(RunState &state) {
    if (!machine.calculatorModes) return runStop(state);
    expectAlone(state);
    const int at = partnerOf(state);
    return at == noPartner ? WayOut::programEnds : jumpBehindStatement(state, at);
}

WayOut runGoto(RunState &state) {
    const ProgramCell &name = state.statement[1];
    const bool isLabel = hasCell(state, 1) && (isNumber(name) || name.kind == CellKind::token);
    if (state.cellCount != 2 || !isLabel) argError();
    return isLabel ? goToLabel(state, name) : handled(state);
}

WayOut goToLabel(RunState &state, const ProgramCell &label) {
    const int at = findLabel(*loadedProgram(state.programIndex).labels, label);
    state.statementLength = at == noPartner ? 0 : 2;
    if (at == noPartner) {
        goError();
        state.position = loadedProgram(state.programIndex).cellCount - 1;
        return handled(state);
    }
    state.position = at;
    makeNumber(state.statement[0], {});
    state.cellCount = 0;
    return WayOut::handled;
}

WayOut runIf(RunState &state) { return conditionHolds(state) ? takeTrueBranch(state) : takeFalseBranch(state); }

WayOut runElse(RunState &state) {
    const int at = partnerOf(state);
    return jumpTo(state, at == noPartner ? 0 : at);
}

// The end and the step are computed anew at each pass, so that a body which changes them takes effect.
WayOut runFor(RunState &state) {
    const bool continues = state.forContinuing;
    state.forContinuing = false;
    ForOperands operands;
    if (!readFor(state, operands)) return lostPartner(state);
    double &counter = operands.variable->re;
    counter = continues ? counter + operands.step : operands.start;
    const bool goesOn = operands.step >= 0 ? counter <= operands.end : operands.step < 0 && counter >= operands.end;
    if (goesOn) return handled(state);
    counter -= operands.step;
    const int next = partnerOf(state);
    return next == noPartner ? lostPartner(state) : jumpBehind(state, next);
}

WayOut runNext(RunState &state) {
    const int at = partnerOf(state);
    if (at == noPartner) return lostPartner(state);
    state.forContinuing = true;
    return jumpTo(state, at);
}

WayOut runWhile(RunState &state) {
    if (conditionHolds(state)) return handled(state);
    const int at = partnerOf(state);
    return at == noPartner ? lostPartner(state) : jumpBehind(state, at);
}

WayOut runWhileEnd(RunState &state) {
    const int at = partnerOf(state);
    return at == noPartner ? lostPartner(state) : jumpTo(state, at);
}

WayOut runLoopWhile(RunState &state) {
    if (!conditionHolds(state)) return handled(state);
    const int at = partnerOf(state);
    return at == noPartner ? lostPartner(state) : jumpTo(state, at);
}

}  // namespace numalink
