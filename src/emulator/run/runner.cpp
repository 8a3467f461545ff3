// The run thread: it walks a program a statement at a time, and what Prog calls within it.
#include "emulator/run/runner.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>

#include "calculator/charset.h"
#include "emulator/expressions/evaluator.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/block_search.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/far_end.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/programs.h"
#include "emulator/machine/run_observer.h"
#include "emulator/machine/run_waits.h"
#include "emulator/run/planned_statements.h"
#include "emulator/run/run_calls.h"
#include "emulator/run/run_display.h"
#include "emulator/screens/display.h"
#include "emulator/statements/statement_plans.h"
#include "emulator/statements/statements.h"
#include "platform/clock.h"
#include "platform/time_slice.h"
#include "platform/worker.h"
#include "settings/settings_store.h"
#include "telling/graphical_calls.h"
#include "telling/texts.h"
#include "telling/user_interface.h"

namespace numalink {

namespace {

constexpr std::uint64_t callPoll = 100;         // milliseconds between the looks of a caller, with the pace on
constexpr std::uint64_t workPerStatement = 10;  // evaluations within calls, where statements have a limit
constexpr std::uint64_t settingsInterval = 64;  // statements between two looks at a setting

Worker runThread;
std::array<std::unique_ptr<RunState>, callLimit> calls;  // the programs in progress, the first one's caller ahead
int nextCall = 0;
std::uint64_t statementLimitOfRun = 0;
bool haltTold = false;  // the box of a halt: every program in progress ends
RunFault fault;         // the run threads', read between runs
bool debugShown = false;
std::uint64_t nextDebugLook = 0, nextSpeedLook = 0;  // in statements of the run
std::atomic<int> debugVariables = 0, debugTemporaries = 0;

// What begins again begins without the error at which it halted.
void forgetHalt() {
    haltTold = false;
    fault = {};
    machine.errorFlag = false;
}

enum class LoopEnd { programEnded, stopped };

bool isEnd(const ProgramCell &cell) { return isToken(cell, token::endOfProgram); }

// Copies the statement at position to the working array. False when it has more cells than that holds.
bool takeStatement(RunState &state) {
    state.color = pixelColor::blue;
    state.sketchColor = graphs.sketchColor;
    machine.textColumn = 0;
    if (state.statementLength > statementLimit) {
        state.cellCount = 0;
        makeBlank(state.statement[0]);
        return false;
    }
    std::copy_n(state.program + state.position, state.statementLength, state.statement);
    return true;
}

// What no statement has taken is an expression, and its value is kept.
void evaluateLeftovers(RunState &state) {
    evaluate(state.statement, 0, state.cellCount);
    if (state.cellCount > 1) synError();
    if (state.cellCount < 1) return;
    const ProgramCell &cell = state.statement[0];
    if (isNumber(cell)) machine.ans = cell.value;
    if (cell.kind == CellKind::matrix) matrixAssign(ownedByVariable, machine.matrixSlots[matrixAnsSlot], cell.matrix);
    if (cell.kind == CellKind::list)
        matrixAssign(ownedByVariable, machine.listSlots[static_cast<std::size_t>(machine.currentFile)][listAnsSlot],
                     cell.matrix);
}

void lookAtDebug() {
    if (machine.statementsRun < nextDebugLook) return;
    nextDebugLook = machine.statementsRun + settingsInterval;
    debugShown = settingsInt(setting::displayDebug) != 0;
}

void showDebug() {
    lookAtDebug();
    if (!debugShown) return;
    debugVariables = matrixRowsOwned(ownedByVariable);
    debugTemporaries = matrixRowsOwned(ownedTemporarily);
}

bool isLineEnd(const ProgramCell &cell) {
    return isToken(cell, token::newLine) || isToken(cell, token::displayTriangle);
}

// The box also offers the way to the statement, which the front end takes.
void tellHalt(const RunState &state) {
    haltTold = true;
    const LoadedProgram &program = loadedProgram(state.programIndex);
    fault = {.item = program.item, .line = 1};
    for (int i = 0; i < state.position - state.statementLength; i++) {
        if (isTerminator(state.program[i])) fault.statement++;
        if (!isLineEnd(state.program[i])) continue;
        fault.line++;
        fault.statement = 0;
    }
    Box box;
    box.bodyText = Text::haltedAtLine;
    box.titleText = Text::haltTitle;
    box.arguments = {utf8FromCalculator(program.name), std::to_string(fault.line)};
    box.body = wording(box.bodyText, box.arguments) + "\n" + machine.errorText;
    box.title = wording(box.titleText);
    box.buttons = BoxButtons::okGoTo;
    if (!runRepeats) userInterface.messageBox(box);
}

// False when the program ends here.
bool passErrors(const RunState &state) {
    if (!machine.errorFlag || runIsLeft()) return true;
    if (settingsInt(setting::haltOnError) == 0) {
        machine.errorFlag = false;
        return true;
    }
    tellHalt(state);
    return false;
}

enum class StatementEnd { next, jump, programEnded, stopped };

// From the normal end of a statement to behind its terminator.
StatementEnd finishStatement(RunState &state) {
    showDebug();
    state.position += state.statementLength;
    const ProgramCell &terminator = state.program[state.position];
    if (isEnd(terminator)) {
        if (machine.errorFlag) refreshScreen(false);  // the box speaks of what is shown
        passErrors(state);
        return StatementEnd::programEnded;
    }
    if (isToken(terminator, token::displayTriangle) && !showAtTriangle(state)) return StatementEnd::stopped;
    refreshScreen(false);
    if (!passErrors(state)) return StatementEnd::programEnded;
    state.position++;
    return StatementEnd::next;
}

StatementEnd runOneStatement(RunState &state) {
    if (isEnd(state.program[state.position])) return StatementEnd::programEnded;
    if (statementLimitOfRun != 0 && machine.statementsRun >= statementLimitOfRun) {
        runHalt(RunEnd::limit);
        return StatementEnd::stopped;
    }
    if (const RunObserver *observer = observing()) {
        if (observerAsks(state.programIndex, state.position) && !observer->beforeStatement(state))
            return StatementEnd::stopped;
    }
    machine.statementsRun++;
    state.statementLength = loadedProgram(state.programIndex).terminators[state.position] - state.position;
    state.cellCount = state.statementLength;
    // What the statement before an empty one left stays, with its temporaries: the end of the program may show it.
    if (state.statementLength == 0) return finishStatement(state);
    const bool fits = takeStatement(state);
    freeTemporaries();
    if (!runGoesOn()) return StatementEnd::stopped;
    if (!fits) synError();
    const WayOut way = runStatement(state);
    if (way == WayOut::goesOn && state.cellCount > 0) evaluateLeftovers(state);
    if (machine.exhausted) {
        runHalt(RunEnd::memory);
        return StatementEnd::stopped;
    }
    if (way == WayOut::jump) return StatementEnd::jump;
    if (way == WayOut::programEnds || haltTold) return StatementEnd::programEnded;
    return finishStatement(state);
}

void callLoaded(int program);

// Behind what a Prog has called.
StatementEnd finishCall(RunState &state) {
    if (machine.exhausted) {
        runHalt(RunEnd::memory);
        return StatementEnd::stopped;
    }
    return haltTold ? StatementEnd::programEnded : finishStatement(state);
}

// The planned statements from here on, up to one that isn't: its row is then run.
StatementEnd runSomeStatements(RunState &state, bool refreshDue) {
    lookAtDebug();
    // Plans read digits as of base ten.
    const bool isFast = runRepeats || (fullSpeed && !paceCounted);
    const bool usePlans = isFast && !debugShown && !evaluateWithoutShortcuts && machine.numberBase == decimalBase;
    if (!usePlans) return runOneStatement(state);
    PlannedRun run{.statementLimit = statementLimitOfRun, .refreshDue = refreshDue, .observer = observing()};
    switch (runPlanned(state, run)) {
        case PlannedStop::statementEnd:
            return finishStatement(state);
        case PlannedStop::programCall:
            callLoaded(run.called);
            return finishCall(state);
        case PlannedStop::stopped:
            return StatementEnd::stopped;
        case PlannedStop::plainStatement:
            break;
    }
    return runOneStatement(state);
}

LoopEnd runStatements(RunState &state, StatementEnd end = StatementEnd::next) {
    bool refreshDue = true;  // what lies ahead of the program may have drawn
    for (;;) {
        if (end == StatementEnd::programEnded) return LoopEnd::programEnded;
        if (end == StatementEnd::stopped) return LoopEnd::stopped;
        timeSlicePassed();
        if (end == StatementEnd::next) {
            if (!runGoesOn()) return LoopEnd::programEnded;
            pace(paceUnits::statement);
            if (paceCounted) paceUnitsAhead = paceUnits::statement;
        }
        end = runSomeStatements(state, refreshDue);
        refreshDue = end == StatementEnd::jump;
    }
}

void callProgram(std::string_view name);

// The record of the next call, for the program to begin with; false without the memory for it.
bool takeCall(int program) {
    std::unique_ptr<RunState> &call = calls[static_cast<std::size_t>(nextCall)];
    if (call == nullptr) call.reset(new (std::nothrow) RunState);
    if (call == nullptr) return false;
    call->programIndex = program;
    call->program = loadedProgram(program).cells;
    call->position = call->statementLength = call->cellCount = 0;
    call->statement[0] = {};
    call->forContinuing = false;
    call->callProgram = callProgram;
    nextCall++;
    return true;
}

// The programs in progress go on, the innermost first.
LoopEnd carryOn(int index) {
    RunState &state = *calls[static_cast<std::size_t>(index)];
    if (index + 1 == nextCall) return runStatements(state);
    carryOn(index + 1);
    nextCall--;
    makeBlank(state.statement[0]);  // of its Prog nothing is left
    state.cellCount = 0;
    return runStatements(state, finishCall(state));
}

// After the observer has left the run.
bool goOnElsewhere() {
    runLeftBehind();
    forgetHalt();
    nextDebugLook = nextSpeedLook = 0;
    const RunObserver *observer = observing();
    return observer != nullptr && runGoesOn() && observer->goesOnElsewhere();
}

void runFirstProgram() {
    threadRole = ThreadRole::run;
    fullSpeed = speedHeld || settingsInt(setting::fullSpeed) == 1;
    for (bool goesOn = true; goesOn;) {
        goesOn = carryOn(0) == LoopEnd::programEnded && showAtEnd(*calls[0]);
        if (runIsLeft()) {
            goesOn = goOnElsewhere();
        } else if (goesOn) {
            forgetHalt();
            calls[0]->position = 0;
        }
    }
    runRepeats = false;  // so that the line is closed whatever it stopped in
    farEndClose();
}

// The callee has ended at once at full speed; else as the caller's looks would find it.
void waitLikeAPoll(std::uint64_t since) {
    if (fullSpeed) return;
    const std::uint64_t past = (tickCount() - since) % callPoll;
    waitPassSleep(callPoll - past);
    workGoesOn();
}

void callLoaded(int program) {
    const std::uint64_t start = fullSpeed ? 0 : tickCount();
    if (nextCall >= callLimit || !takeCall(program)) {
        goError();
        return;
    }
    if (machine.statementsRun >= nextSpeedLook) {
        nextSpeedLook = machine.statementsRun + settingsInterval;
        fullSpeed = speedHeld || settingsInt(setting::fullSpeed) == 1;
    }
    runStatements(*calls[static_cast<std::size_t>(nextCall - 1)]);
    nextCall--;  // it stands in the caller's Prog while it waits
    waitLikeAPoll(start);
}

void callProgram(std::string_view name) {
    const int program = findProgram(name);
    program < 0 ? goError() : callLoaded(program);
}

void joinRun() {
    if (runThread.isStarted()) {
        runThread.join();
        runObserver = nullptr;
        runRepeats = paceCounted = false;
        holdDisplay(false);
    }
    nextCall = 0;
}

}  // namespace

int runCallDepth() { return nextCall; }

std::vector<CallPlace> runCalls() {
    std::vector<CallPlace> places;
    for (int i = 0; i < nextCall; i++) {
        const RunState &call = *calls[static_cast<std::size_t>(i)];
        places.push_back(
            {call.programIndex, call.position, call.statementLength, call.forContinuing, call.statement[0]});
    }
    return places;
}

bool runCarryOnFrom(const std::vector<CallPlace> &places) {
    nextCall = 0;
    for (const CallPlace &place : places) {
        if (!takeCall(place.program)) return false;
        RunState &call = *calls[static_cast<std::size_t>(nextCall - 1)];
        call.position = place.position;
        call.statementLength = place.statementLength;
        call.forContinuing = place.forContinuing;
        call.statement[0] = place.left;
    }
    return nextCall > 0;
}

bool runStart(const RunOptions &options) {
    if (emulatorRunning) return false;
    joinRun();
    if (programCount() == 0) {
        resetRunEnd(RunEnd::nothingToRun);
        return false;
    }
    resetRunEnd(RunEnd::running);
    graphicalCallsAccept(ThreadRole::run);
    statementLimitOfRun = options.statementLimit;
    workBegin(options.limitsWork ? options.statementLimit * workPerStatement : 0);
    forgetHalt();
    nextDebugLook = nextSpeedLook = 0;
    statementPlansForget();
    if (!takeCall(0)) return false;
    emulatorRunning = true;
    if (!runThread.start(runFirstProgram)) emulatorRunning = false;
    return emulatorRunning;
}

void runStop() {
    emulatorRunning = false;
    graphicalCallsRefuse(ThreadRole::run);
    runWake();
    farEndInterrupt();
    joinRun();
}

void runWait() {
    joinRun();
    emulatorRunning = false;
}

RunEnd runEnded() { return runEndCause(); }

const RunFault &runFault() { return fault; }

DebugCounts runDebugCounts() { return {debugVariables, debugTemporaries}; }

}  // namespace numalink
