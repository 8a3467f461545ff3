// The run thread's side: it is asked ahead of statements, stops there, and takes the way back.
#include <algorithm>
#include <optional>
#include <utility>

#include "debugger/debugger_control.h"
#include "debugger/history.h"
#include "debugger/machine_image.h"
#include "debugger/moment_control.h"
#include "debugger/profile_counts.h"
#include "debugger/trace.h"
#include "debugger/way.h"
#include "emulator/machine/pace.h"
#include "emulator/run/key_recording.h"
#include "emulator/run/run_calls.h"
#include "emulator/screens/display.h"

namespace numalink {

const DebugTrace *debugTrace = nullptr;

namespace {

constexpr std::uint64_t noLimit = UINT64_MAX;

// The run thread's.
struct Run {
    DebugOptions options;
    std::uint64_t optionsSeen = 0;
    Stops stops;
    bool entryDue = false, endSeen = false;
    std::uint64_t firstError = noLimit;  // the statement of the first report, from 1
    bool errorStopped = false;           // there, since it was last come to
    DebugStep step = DebugStep::onward;
    int stepDepth = 0;
    CellRange stepLine;
    std::uint64_t newest = 0;            // where the record ends, while the run repeats itself
    std::uint64_t nextChange = noLimit;  // in the record: a change by hand
    std::uint64_t nextImageLook = 0;
    std::size_t image = 0;       // to go on from, when the run is left
    std::uint64_t toldUpTo = 0;  // statements before this one are in profile and trace
    std::optional<Search> search;
    bool isResuming = false;  // a moment is being repeated up to newest, unseen
};
Run run;

void tell() {
    if (debugStateChanged != nullptr) debugStateChanged();
}

// The wait that the run is in now is told when it begins, and when the run is first seen behind it.
void tellWait(RunEnd where) {
    if (where != RunEnd::running) drawAttention();
    if (control.waitsAt.exchange(where) != where) tell();
}

void beLive() {
    runRepeats = false;
    run.nextChange = noLimit;
}

HistoryMode modeWanted() {
    if (run.options.records) return HistoryMode::full;
    return momentControl.isOn ? HistoryMode::brief : HistoryMode::off;
}

void adoptOptions() {
    if (run.optionsSeen == control.optionsVersion) return;
    const HoldLock held(control.lock);
    run.optionsSeen = control.optionsVersion;
    run.options = control.options;
}

void adopt() {
    adoptOptions();
    if (const HistoryMode mode = modeWanted(); mode != historyMode()) {
        if (runRepeats) historyForget();
        beLive();
        historyKeep(mode);
        run.nextImageLook = 0;
    }
    stopsAdopt(run.stops);
    observerLook.marks = run.stops.markPointers.data();
    if (!runRepeats) profileAdopt();
}

// How many statements are over.
std::uint64_t statementsOver(bool isWithin) {
    return isWithin && machine.statementsRun > 0 ? machine.statementsRun - 1 : machine.statementsRun;
}

void setLook() {
    const std::uint64_t now = machine.statementsRun;
    std::uint64_t from = noLimit;
    const bool asksAlways = run.step != DebugStep::onward || !run.stops.ofData.empty() || paceCounted ||
                            debugTrace != nullptr || run.search.has_value();
    if (asksAlways) from = now;
    if (historyIsOn() && !runRepeats) from = std::min(from, run.nextImageLook);
    if (runRepeats) from = std::min({from, run.newest, run.nextChange});
    observerLook.marks = run.options.breakpoints ? run.stops.markPointers.data() : nullptr;
    if (!runRepeats) from = std::min<std::uint64_t>(from, momentControl.askedAt);
    observerLook.fromStatement = from;
    if (control.pauseWanted || momentControl.asked || run.optionsSeen != control.optionsVersion ||
        stopsAreOld(run.stops))
        drawAttention();
}

void leaveFor(std::size_t image) {
    run.image = image;
    runLeave();
}

DebugStop stopFor(StopReason reason, int program, int cell, bool isWithin) {
    DebugStop stop;
    stop.reason = reason;
    stop.place = placeOfCell(program, cell);
    stop.isWithin = isWithin;
    stop.statement = statementsOver(isWithin);
    stop.newest = runRepeats ? run.newest : stop.statement;
    stop.oldest = std::min(historyOldest(), stop.newest);
    stop.depth = runCallDepth() - 1;
    return stop;
}

void obeyStep(const DebugCommand &command, const DebugStop &stop) {
    run.step = command.step;
    run.stepDepth = runCallDepth();
    run.stepLine = lineAround(stop.place);
    if (command.place.program >= 0) stopsSetGoal(run.stops, command.place);
}

// The image that a search begins with, and up to where from there.
void beginSearch(Search search, const DebugStop &from) {
    search.limit = from.statement;
    search.takesLimit = from.isWithin;  // the statement in progress is one that was gone by
    search.depth = runCallDepth();
    search.origin = from.statement;
    const std::uint64_t last = search.isGoal ? search.goal : from.statement - (from.isWithin ? 0 : 1);
    leaveFor(historyImageAt(last));
    search.isGoal ? wayBegins(DebugWay::Sort::back, historyStatementOf(run.image), last)
                  : wayBegins(DebugWay::Sort::back, last, historyOldest());
    run.search = std::move(search);
}

// Blocks until a command. False: the run is left, or has ended.
bool stopAt(const DebugStop &stop) {
    if (!stop.isWithin) refreshScreen(false);
    control.pauseWanted = false;
    run.step = DebugStep::onward;
    stopsClearGoal(run.stops);
    {
        const HoldLock held(control.lock);
        control.stop = stop;
        control.stop.number = ++control.stops;
        control.state = DebugState::stopped;
        control.commandDue = false;
    }
    tell();
    waitForWake(control.commandDue);
    DebugCommand command;
    {
        const HoldLock held(control.lock);
        command = std::exchange(control.command, {});
        control.commandDue = false;
        control.state = DebugState::runs;
    }
    tell();
    if (!runGoesOn()) return false;
    adopt();
    if (command.sort == DebugCommand::Sort::step) {
        obeyStep(command, stop);
        return true;
    }
    if (!runRepeats) run.newest = stop.statement;
    beginSearch(std::move(command.search), stop);
    return false;
}

// The step in progress is over ahead of the statement at this cell.
bool stepIsOver(int program, int cell) {
    const int depth = runCallDepth();
    switch (run.step) {
        case DebugStep::statement:
            return true;
        case DebugStep::over:
            return depth <= run.stepDepth;
        case DebugStep::out:
            return depth < run.stepDepth;
        case DebugStep::line:
            return depth < run.stepDepth || (depth == run.stepDepth && !run.stepLine.holds(program, cell));
        case DebugStep::onward:
            break;
    }
    return false;
}

// Its reason, if one of the breakpoints is.
void takeBreakpoint(DebugStop &stop, int program, int cell) {
    if (!run.options.breakpoints) return;
    const StopFound found = stopsFind(run.stops, program, cell);
    if (found.reason == StopReason::none) return;
    stop.reason = found.reason;
    stop.breakpoint = found.breakpoint;
    stop.detail = found.detail;
}

DebugStop whyStop(int program, int cell) {
    DebugStop why;
    takeBreakpoint(why, program, cell);
    if (why.reason == StopReason::none && stepIsOver(program, cell)) why.reason = StopReason::step;
    if (std::exchange(run.entryDue, false)) why.reason = StopReason::entry;
    if (why.reason == StopReason::none && control.pauseWanted) why.reason = StopReason::pause;
    if (why.reason == StopReason::none) return why;
    DebugStop stop = stopFor(why.reason, program, cell, false);
    stop.breakpoint = why.breakpoint;
    stop.detail = why.detail;
    return stop;
}

void recordImage() {
    if (runRepeats || !historyIsOn() || machine.statementsRun < run.nextImageLook) return;
    run.nextImageLook = historyAt(machine.statementsRun);
}

// The statement is about to run, behind whatever has stopped ahead of it.
void count(int program, int cell) {
    if (runRepeats || machine.statementsRun < run.toldUpTo) return;
    run.toldUpTo = machine.statementsRun + 1;
    if (paceCounted) profileCount(program, cell);
    if (debugTrace != nullptr) debugTrace->statement(program, cell);
}

// The statement was found that was gone back for.
bool arrive(int program, int cell) {
    const Search found = std::move(*run.search);
    run.search.reset();
    wayEnds();
    if (machine.statementsRun >= run.newest) beLive();
    stopsLookAtData(run.stops);
    hitsShow(machine.statementsRun);
    refreshScreen(false);
    holdDisplay(false);
    DebugStop stop = stopFor(found.reason, program, cell, false);
    stop.breakpoint = found.breakpoint;
    return stopAt(stop);
}

// On the way back, through what has run before.
bool goOnSearching(int program, int cell) {
    Search &going = *run.search;
    const std::uint64_t now = machine.statementsRun;
    if (control.pauseWanted && !going.isGivenUp) {
        leaveFor(searchGiveUp(going));
        return false;
    }
    if (going.isGoal) {
        if (now >= going.goal) return arrive(program, cell);
        if (going.back == DebugBack::statement) wayAt(now);
        observerLook.fromStatement = std::min(going.goal, now + wayInterval);
        observerLook.marks = nullptr;
        return true;
    }
    searchLook(going, run.stops, program, cell, now);
    if (now < going.limit) return runGoesOn();
    leaveFor(searchFurther(going, run.image));
    if (!going.isGoal) wayAt(going.limit);
    return false;
}

void giveMoment(std::uint64_t statement, bool isWithin, RunEnd waitsAt) {
    if (!isWithin && statement >= momentControl.askedAt) {
        momentControl.askedAt = noMomentAsked;
        momentControl.asked = true;
    }
    if (!momentControl.asked.exchange(false)) return;
    const Bytes moment = momentNow(statement, isWithin, waitsAt, false);
    if (momentTaken != nullptr) momentTaken(moment);
}

// The run goes on where the moment was.
void beResumed() {
    run.isResuming = false;
    wayEnds();
    historyCut(machine.statementsRun, false, false);  // what was left of its inputs isn't for what comes now
    beLive();
    holdDisplay(false);
}

// In the statements of a moment's way from its state to where it was.
bool goOnResuming() {
    const std::uint64_t now = machine.statementsRun;
    if (now > run.newest || (now == run.newest && !historyHasInput())) {
        beResumed();
        return false;
    }
    wayAt(now);
    observerLook.marks = nullptr;
    observerLook.fromStatement = std::min(run.newest, now + wayInterval);
    return true;
}

bool resumeMoment() {
    const std::unique_ptr<Moment> moment = std::move(momentControl.resume);
    keysSpoil();
    holdDisplay(true);
    adoptOptions();
    bringBackState(moment->state);
    if (!runCarryOnFrom(moment->state.calls)) return false;
    historyBeginWith(moment->inputs, modeWanted());
    runRepeats = true;
    run.newest = moment->statement;
    run.toldUpTo = moment->statement;
    run.isResuming = true;
    wayBegins(DebugWay::Sort::toMoment, machine.statementsRun, run.newest);
    stopsLookAtData(run.stops);
    drawAttention();
    return true;
}

bool beforeStatement(RunState &running) {
    if (runIsLeft() || !runGoesOn()) return false;
    if (momentControl.resume != nullptr) {
        runLeave();
        return false;
    }
    if (run.isResuming && goOnResuming()) return true;
    tellWait(RunEnd::running);
    const int program = running.programIndex, cell = running.position;
    if (run.search) {
        if (!goOnSearching(program, cell)) return false;
        if (run.search) return true;
        count(program, cell);
        setLook();
        return runGoesOn();
    }
    adopt();
    run.endSeen = false;
    if (runRepeats && machine.statementsRun >= run.newest) beLive();
    if (runRepeats && machine.statementsRun >= run.nextChange) {
        leaveFor(historyImageAt(run.nextChange));
        return false;
    }
    recordImage();
    giveMoment(machine.statementsRun, false, RunEnd::running);
    DebugStop stop = whyStop(program, cell);
    const std::uint64_t version = run.stops.version;
    if (stop.reason != StopReason::none && !stopAt(stop)) return false;
    if (stop.reason == StopReason::entry && run.stops.version != version) {
        // A breakpoint that was set while the run stood ahead of all counts there too.
        takeBreakpoint(stop, program, cell);
        if (stop.reason != StopReason::entry && !stopAt(stop)) return false;
    }
    count(program, cell);
    setLook();
    return runGoesOn();
}

bool goesOnElsewhere() {
    run.errorStopped = false;
    if (momentControl.resume != nullptr) return resumeMoment();
    holdDisplay(run.search.has_value());
    runRepeats = true;
    if (!historyBringBack(run.image)) return false;
    run.nextChange = historyNextChange(machine.statementsRun).value_or(noLimit);
    stopsLookAtData(run.stops);
    if (run.search) searchBegin(*run.search);
    drawAttention();
    return true;
}

DebugStop stopWithin(StopReason reason) {
    const std::vector<CallPlace> calls = runCalls();
    return stopFor(reason, calls.back().program, calls.back().position, true);
}

// A long statement, or the return from a Prog, stops at a pause too.
void within() {
    if (runIsLeft() || run.search || run.isResuming) return;
    giveMoment(statementsOver(true), true, RunEnd::running);
    if (!control.pauseWanted) return;
    tellWait(RunEnd::running);
    if (stopAt(stopWithin(StopReason::pause))) setLook();
}

void reported(const char *text) {
    if (runIsLeft() || run.search || run.isResuming) return;
    if (!runRepeats && debugTrace != nullptr) debugTrace->report(text);
    run.firstError = std::min(run.firstError, machine.statementsRun);
    const bool isFirst = machine.statementsRun == run.firstError && !std::exchange(run.errorStopped, true);
    if (run.options.errors == ErrorStops::none || (run.options.errors == ErrorStops::first && !isFirst)) return;
    DebugStop stop = stopWithin(StopReason::error);
    stop.detail = text;
    if (stopAt(stop)) setLook();
}

void screenModeChanged(int mode) {
    if (!runRepeats && !runIsLeft() && debugTrace != nullptr) debugTrace->screenMode(mode);
}

// In a wait the run stops at a pause, and once at the end of the program: also for what its last statement has changed.
DebugStop whyStopInWait(bool isEnd) {
    DebugStop stop = stopWithin(StopReason::none);
    stop.isWaiting = true;
    stop.isAtEnd = isEnd;
    if (control.pauseWanted) stop.reason = StopReason::pause;
    if (!isEnd || std::exchange(run.endSeen, true)) return stop;
    const StopFound found = run.options.breakpoints ? stopsFindOfData(run.stops) : StopFound();
    if (found.reason != StopReason::none) {
        stop.reason = found.reason;
        stop.breakpoint = found.breakpoint;
        stop.detail = found.detail;
    } else if (run.step != DebugStep::onward || run.options.stopAtEnd) {
        stop.reason = StopReason::end;
    }
    return stop;
}

int waitKey(RunEnd where) {
    if (runIsLeft()) return noKeyAnyMore;
    if (momentControl.resume != nullptr) {
        runLeave();
        return noKeyAnyMore;
    }
    if (!run.search && !historyHasInput()) {
        if (run.isResuming) beResumed();
        adopt();
        giveMoment(statementsOver(true), true, where);
        if (paceCounted) profileSettle();
        const DebugStop stop = whyStopInWait(where == RunEnd::end);
        if (stop.reason != StopReason::none) {
            if (!stopAt(stop)) return noKeyAnyMore;
            setLook();
        }
        if (!historyHasInput()) beLive();
        tellWait(where);
    }
    return historyWaitKey(where);
}

int getKey() { return runIsLeft() ? 0 : historyGetKey(); }
std::uint64_t ticks() { return runIsLeft() ? 0 : historyTicks(); }
LineOutcome lineOutcome(const std::function<LineOutcome()> &exchange) {
    return runIsLeft() ? LineOutcome() : historyLine(exchange);
}

}  // namespace

MomentPlace momentPlaceOfEnd() {
    const std::size_t image = historyImageAt(machine.statementsRun);
    if (!historyIsOn() || momentControl.resume != nullptr) return {};
    const RunEnd where = runEndCause() == RunEnd::running ? control.waitsAt.load() : runEndCause();
    if (run.isResuming) return {true, run.newest, where, true};
    if (historyImageFor(machine.statementsRun) == nullptr) return {};
    return {true, std::max(statementsOver(true), historyStatementOf(image)), where, false};
}

const RunObserver followingObserver = {
    .beforeStatement = beforeStatement,
    .goesOnElsewhere = goesOnElsewhere,
    .within = within,
    .reported = reported,
    .screenModeChanged = screenModeChanged,
    .waitKey = waitKey,
    .getKey = getKey,
    .ticks = ticks,
    .lineOutcome = lineOutcome,
};

void followAnew(bool stopsAtEntry) {
    observerLook.marks = nullptr;
    run = {};
    wayEnds();
    hitsForget();
    run.entryDue = stopsAtEntry;
}

void followLive(std::uint64_t toldUpTo) {
    run.toldUpTo = std::min(run.toldUpTo, toldUpTo);
    hitsCutBehind(toldUpTo);
    run.nextImageLook = 0;  // a change amid a statement has its image ahead of the next one
    if (run.firstError > toldUpTo) run.firstError = noLimit;  // the new road may not come to it
    beLive();
}

}  // namespace numalink
