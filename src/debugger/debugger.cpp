// The commands.
#include "debugger/debugger.h"

#include "debugger/debugger_control.h"
#include "debugger/history.h"
#include "debugger/moment_control.h"
#include "debugger/profile.h"
#include "debugger/profile_counts.h"
#include "emulator/run/run_calls.h"
#include "emulator/screens/display.h"

namespace numalink {

void (*debugStateChanged)() = nullptr;
DebugControl control;

namespace {

bool give(const DebugCommand &command) {
    {
        const HoldLock held(control.lock);
        if (control.state != DebugState::stopped || control.commandDue) return false;
        control.command = command;
        control.pauseWanted = false;  // one from here on is for what comes now
        control.state = DebugState::runs;
        control.commandDue = true;
    }
    runWake();
    return true;
}

bool isStopped() { return debugState() == DebugState::stopped; }

// It is stopped, and there is somewhere to go back to.
bool hasRecord() { return isStopped() && historySize().images > 0; }

// Of a stopped run: what it does from here on is new.
void cutHere(bool hasChanged) {
    const HoldLock held(control.lock);
    if (control.stop.newest > control.stop.statement || historyHasInput()) control.stop.isNewRoad = true;
    historyCut(control.stop.statement, hasChanged, !control.stop.isWithin);
    control.stop.newest = control.stop.statement;
    followLive(control.stop.statement + (control.stop.isWithin ? 1 : 0));
}

}  // namespace

void debugBegin(const DebugOptions &options) {
    const bool isRunning = emulatorRunning;
    if (!isRunning) debugForget();
    debugSetOptions(options);
    if (debugState() == DebugState::off) {  // nobody has followed this run yet
        breakpointsFollowLoaded();
        breakpointsCountAnew();
        // A run that is on and observed, so that it can be saved, has its state of the following at work.
        if (!isRunning || runObserver == nullptr) followAnew(options.stopAtEntry && !isRunning);
        if (!isRunning) profileAdopt();
    }
    {
        const HoldLock held(control.lock);
        if (control.state == DebugState::off) control.state = DebugState::runs;
    }
    drawAttention();
    runObserver = &followingObserver;
}

void debugEnd() {
    profileStop();
    DebugOptions none;
    none.breakpoints = false;
    debugSetOptions(none);
    if (isStopped()) {
        if (historyIsOn()) cutHere(false);
        give({});
    }
}

void debugForget() {
    runObserver = nullptr;
    const HoldLock held(control.lock);
    control.state = DebugState::off;
    control.stop = {};
    control.command = {};
    control.commandDue = control.pauseWanted = false;
    control.waitsAt = RunEnd::running;
    momentControl.isOn = momentControl.asked = false;
    momentControl.askedAt = noMomentAsked;
    momentControl.resume.reset();
    followLive(0);
    followAnew(false);
    historyForget();
    profileForget();
    holdDisplay(false);
}

void debugSetOptions(const DebugOptions &options) {
    const HoldLock held(control.lock);
    control.options = options;
    control.optionsVersion++;
    drawAttention();
}

DebugOptions debugOptions() {
    const HoldLock held(control.lock);
    return control.options;
}

DebugState debugState() {
    const HoldLock held(control.lock);
    return control.state;
}

DebugStop debugStop() {
    const HoldLock held(control.lock);
    return control.stop;
}

RunEnd debugWaitsAt() { return control.waitsAt; }

std::vector<DebugPlace> debugCalls() {
    std::vector<DebugPlace> places;
    if (!isStopped()) return places;
    for (const CallPlace &call : runCalls()) places.insert(places.begin(), placeOfCell(call.program, call.position));
    return places;
}

bool debugStep(DebugStep step) {
    DebugCommand command;
    command.step = step;
    return give(command);
}

bool debugRunTo(const DebugPlace &place) {
    DebugCommand command;
    command.place = place;
    return cellOfPlace(place.program, place.line, place.statement) >= 0 && give(command);
}

void debugPause() {
    control.pauseWanted = true;
    drawAttention();
}

bool debugBack(DebugBack back, const std::string &target) {
    const DebugStop stop = debugStop();
    if (!hasRecord() || stop.oldest > stop.statement) return false;
    if (back == DebugBack::statement && !stop.isWithin)
        return stop.statement > stop.oldest && debugGoTo(stop.statement - 1);
    if (back == DebugBack::statement) return debugGoTo(stop.statement);
    DebugCommand command;
    command.sort = DebugCommand::Sort::search;
    command.search.back = back;
    if (back == DebugBack::change) {
        command.search.target = debugTargetNamed(target);
        if (!command.search.target) return false;
    }
    if (stop.statement == stop.oldest && !stop.isWithin) {
        command.search.isGoal = true;
        command.search.goal = stop.oldest;
        command.search.reason = StopReason::backAtStart;
    }
    return give(command);
}

bool debugGoTo(std::uint64_t statement) {
    const DebugStop stop = debugStop();
    if (!hasRecord() || statement < stop.oldest || statement > stop.newest) return false;
    DebugCommand command;
    command.sort = DebugCommand::Sort::search;
    command.search.isGoal = true;
    command.search.goal = statement;
    return give(command);
}

void debugNewRoad() {
    if (isStopped() && historyIsOn()) cutHere(false);
}

DebugChange debugChange(const DebugTarget &target, const std::string &number) {
    if (debugState() == DebugState::runs) return DebugChange::runsOn;
    const DebugChange result = targetSet(target, number);
    if (result == DebugChange::done && isStopped() && historyIsOn()) cutHere(true);
    return result;
}

DebugRecord debugRecord() {
    DebugRecord record;
    if (!isStopped() || !historyIsOn()) return record;
    const DebugStop stop = debugStop();
    const HistorySize size = historySize();
    return {.statements = stop.newest - stop.oldest, .bytes = size.bytes, .keyframes = size.images};
}

}  // namespace numalink
