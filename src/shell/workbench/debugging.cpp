#include "shell/workbench/debugging.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QTimer>
#include <atomic>
#include <filesystem>
#include <set>

#include "debugger/breakpoint_file.h"
#include "debugger/breakpoints.h"
#include "debugger/profile.h"
#include "emulator/machine/machine.h"
#include "platform/program_folder.h"
#include "shell/editor/line_numbers.h"
#include "shell/editor/program_store.h"
#include "shell/editor/program_view.h"
#include "shell/editor/statement_marks.h"
#include "shell/parts/command_states.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/selected_item.h"
#include "shell/run/emulator_place.h"
#include "shell/run/emulator_window.h"
#include "shell/run/run_way.h"
#include "shell/tree/selection.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// Milliseconds: that a step may take before the panes turn grey, and from an edit of the text to a look at it.
constexpr int patience = 150, editPatience = 30;

struct Debugging {
    bool follows = false;
    bool stopAtEntry = false;  // the next run
    bool firstError = false;
    bool counts = false;  // statements, of each run
    bool isStopped = false;
    DebugStop stop;
    std::vector<DebugPlace> calls;
    unsigned told = 0;        // states told, so that a late look knows that it is out of date
    ItemId started = noItem;  // what the run began with
    ItemId shown = noItem;    // what a stop has brought to view
    std::set<ItemId> storedSince;
    RunEnd waitsAt = RunEnd::running;
    bool keepTold = false;   // that the breakpoints can't be kept has been told
    bool keepDue = false;    // they have moved with a text that isn't stored yet
    bool keepSoon = false;   // a change is about to be kept
    bool editSeen = true;    // no look at an edit is due
    bool following = false;  // the edited text, by a look at it
};
Debugging state;

std::atomic<bool> lookDue{false};  // any thread

DebugOptions optionsNow() {
    return {.stopAtEntry = state.stopAtEntry,
            .stopAtEnd = false,
            .breakpoints = true,
            .records = anyPaneShown(),
            .errors = state.firstError ? ErrorStops::first : ErrorStops::none};
}

void tellChange() {
    debuggingChanged();
    commandStatesChanged();
}

// Brings the program in which the run stands to view; an edited one that can't be stored stays.
void showProgramOf(const DebugPlace &place) {
    if (place.item == noItem || place.item == viewItemId) return;
    const QWidget *focused = QApplication::focusWidget();
    const bool inText = focused == programEdit;
    if (!selectItem(place.item) || viewItemId != place.item) return;
    state.shown = place.item;
    if (inText) programEdit->setFocus();
}

void takeState() {
    lookDue = false;
    if (!state.follows) return;
    state.told++;
    state.isStopped = debugState() == DebugState::stopped;
    state.waitsAt = debugWaitsAt();
    if (!state.isStopped) {
        QTimer::singleShot(patience, qApp, [told = state.told] {
            if (state.told == told) tellChange();
        });
        return;
    }
    state.stop = debugStop();
    state.calls = debugCalls();
    showProgramOf(state.stop.place);
    tellChange();
}

void lookSoon() {
    if (lookDue.exchange(true)) return;
    QMetaObject::invokeMethod(qApp, takeState, Qt::QueuedConnection);
}

void follow() {
    if (!besideProgram()) return;
    state.follows = true;
    state.isStopped = false;
    state.storedSince.clear();
    state.started = selectedItemId();
    state.shown = noItem;
    state.waitsAt = RunEnd::running;
    if (state.counts) profileStart();
    debugBegin(optionsNow());
    state.stopAtEntry = false;
    tellChange();
}

// What the debugger knows of a run goes with it, also where that has gone on over the view.
void followNoMore() {
    const bool followed = state.follows;
    const bool goBack = followed && state.shown != noItem && state.shown == viewItemId && state.started != viewItemId;
    const ItemId started = state.started;
    state.follows = state.isStopped = false;
    if (followed) debugEnd();
    debugForget();
    if (!followed) return;
    tellChange();
    if (goBack && storeReadEntry(started)) selectItem(started);
}

// Over the view the run goes on by itself.
void followOverView() {
    state.follows = state.isStopped = false;
    debugEnd();
    tellChange();
}

// The calculator beside the program, and the run that is on followed.
bool beginFollowing() {
    if (!showBesideProgram(true)) return false;
    showWorkbench(true);
    if (emulatorShown() && !state.follows) follow();
    return true;
}

// For commands that move a run: true where one is stopped; else one starts, if it can.
bool stoppedOrStarts() {
    if (emulatorShown() && state.follows) return state.isStopped && beginFollowing();
    if (emulatorShown() || selectedKind() != kind::program || !storeProgramFirst()) return false;
    if (!beginFollowing()) return false;
    state.stopAtEntry = true;
    emulatorToggle();
    state.stopAtEntry = false;
    return false;
}

void keepBreakpoints() {
    state.keepDue = state.keepSoon = false;
    if (breakpointsSave(libraryFolder())) {
        state.keepTold = false;
    } else if (!state.keepTold) {
        state.keepTold = true;
        tellUser(Text::breakpointsNotKept);
    }
}

void breakpointsAreOthers() {
    (state.following ? state.keepDue : state.keepSoon) = true;
    QMetaObject::invokeMethod(
        qApp,
        [] {
            if (mainWindow == nullptr) return;
            if (state.keepSoon) keepBreakpoints();
            tellChange();
        },
        Qt::QueuedConnection);
}

void followStored(ItemId id) {
    StoredItem item;
    if (!breakpointsOfItem(id).empty() && storeReadItem(id, item)) breakpointsFollow(id, item.data);
}

void programIsStored(ItemId id) {
    if (state.follows) state.storedSince.insert(id);
    followStored(id);
    if (state.keepDue) keepBreakpoints();
    tellChange();
}

void programIsOpened() {
    followStored(viewItemId);
    tellChange();
}

// What moves with the text is kept once that is stored.
void lookAtEdit() {
    state.editSeen = true;
    if (mainWindow == nullptr || viewKind != kind::program) return;
    if (!breakpointsOfItem(viewItemId).empty()) {
        state.following = true;
        breakpointsFollow(viewItemId, imageOnView());
        state.following = false;
    }
    marksMoved();
}

void programIsEdited() {
    if (!std::exchange(state.editSeen, false)) return;
    QTimer::singleShot(editPatience, qApp, lookAtEdit);
}

void toggleAt(int line, int statement) {
    if (viewKind != kind::program || !storeProgramFirst()) return;
    breakpointToggle(viewItemId, line, statement);
    followStored(viewItemId);  // so that it knows its statement
}

// The caret's statement in the run, whose text may be an older one.
std::optional<DebugPlace> caretInRun() {
    const TextStatement at = statementAtCaret();
    return placeInRun(
        {.item = viewItemId, .program = programOfItem(viewItemId), .line = at.line, .statement = at.statement},
        imageOnView());
}

void runToCaret() {
    if (shownStop() == nullptr) return;
    if (const std::optional<DebugPlace> place = caretInRun()) debugRunTo(*place);
}

}  // namespace

// Those of items that have been deleted in an earlier run of the program would never be seen again.
void loadBreakpoints() {
    breakpointsChanged = nullptr;  // what is there needn't be written
    const std::string file = libraryFolder() + breakpointFileName;
    std::error_code failed;
    // What can't be read is kept beside, since the next breakpoint is written in its place.
    if (!breakpointsLoad(libraryFolder())) std::filesystem::rename(file, file + ".damaged", failed);
    for (const Breakpoint &point : breakpoints())
        if (point.item != noItem && !storeReadEntry(point.item)) breakpointRemove(point.id);
    breakpointsChanged = breakpointsAreOthers;
    state.keepDue = state.keepSoon = false;
    shownValuesForgotten();
    tellChange();
}

void connectDebugging() {
    debugStateChanged = lookSoon;
    runBegins = follow;
    runIsOver = followNoMore;
    programOpened = programIsOpened;
    programStored = programIsStored;
    programEdited = programIsEdited;
    lineNumberClicked = toggleBreakpointOfLine;
    loadBreakpoints();
}

void forgetDebugging() {
    if (state.keepSoon) breakpointsSave(libraryFolder());
    debugStateChanged = nullptr;
    breakpointsChanged = nullptr;
    runBegins = runIsOver = programOpened = programEdited = [] {};
    debuggingChanged = marksMoved = shownValuesForgotten = [] {};
    programStored = [](ItemId) {};
    lineNumberClicked = [](int) {};
    lineMarkOf = [](int) { return LineMark{}; };
    debugForget();
    breakpointsSet({});
    state = {};
    lookDue = false;
}

const DebugStop *shownStop() { return state.follows && state.isStopped ? &state.stop : nullptr; }
const std::vector<DebugPlace> &shownCalls() { return state.calls; }
bool valuesCanBeRead() {
    return shownStop() != nullptr && debugState() == DebugState::stopped && debugStop().number == state.stop.number;
}
std::uint64_t shownStopNumber() { return state.stop.number; }
bool runIsFollowed() { return state.follows; }
RunEnd runWaitsAt() { return state.waitsAt; }
bool storedSinceStart(ItemId item) { return state.storedSince.contains(item); }

void goToPlace(const DebugPlace &place) {
    if (place.item == noItem || (place.item != viewItemId && !selectItem(place.item))) return;
    const bool isOther = storedSinceStart(place.item) || programChanged();
    const std::optional<DebugPlace> inText = isOther ? placeInText(place, imageOnView()) : place;
    if (inText) selectStatement(inText->line, inText->statement);
}

void countStatements(bool count) {
    state.counts = count;
    if (state.follows) count ? profileStart() : profileStop();
    tellChange();
}
bool countsStatements() { return state.counts; }

void stopAtFirstError(bool stop) {
    state.firstError = stop;
    debugPanesChanged();
}
bool stopsAtFirstError() { return state.firstError; }

void debugPanesChanged() {
    if (state.follows) debugSetOptions(optionsNow());
}

void debugGoOn() {
    if (state.follows) {
        if (!state.isStopped) return;
        emulatorWindow->setFocus();  // its keys are for the program now, not for the text
        if (!besideProgram()) return followOverView();
        debugStep(DebugStep::onward);
        return;
    }
    if (emulatorShown() || !beginFollowing()) return;
    emulatorToggle();
}

void debugPauseRun() {
    if (emulatorShown() && beginFollowing()) debugPause();
}

void debugStepBy(DebugStep step) {
    if (stoppedOrStarts()) debugStep(step);
}

void debugToCaret() {
    if (viewKind != kind::program) return;
    if (emulatorShown()) return runToCaret();
    // The run that has just begun stops ahead of its first statement; it goes on to here from there.
    if (stoppedOrStarts() || emulatorShown()) QTimer::singleShot(patience, qApp, runToCaret);
}

void debugBackBy(DebugBack back, const std::string &target) {
    if (shownStop() != nullptr && beginFollowing() && debugBack(back, target)) watchWay();
}

void debugTakeNewRoad() {
    if (shownStop() == nullptr) return;
    debugNewRoad();
    debugValueChanged();
}

void debugValueChanged() {
    if (shownStop() != nullptr) state.stop = debugStop();
    tellChange();
}

void toggleBreakpoint() {
    const TextStatement at = statementAtCaret();
    toggleAt(at.line, at.statement);
}

void toggleBreakpointOfLine(int line) { toggleAt(line, 0); }

void toggleBeside() {
    const bool beside = !besideProgram();
    if (!showBesideProgram(beside)) return;
    // Over the view nothing is stepped through. What stands still stays so until it is told to go on.
    if (!beside && state.follows && !state.isStopped) followOverView();
    if (beside && emulatorShown() && !state.follows) follow();
    showWorkbench(besideProgram());
    tellChange();
}

void endRun() {
    if (emulatorShown()) emulatorToggle();
}

bool canGoOn() { return emulatorShown() ? shownStop() != nullptr : selectedKind() == kind::program; }
bool canPause() { return emulatorShown() && shownStop() == nullptr; }
bool canGoBack() {
    const DebugStop *stop = shownStop();
    return stop != nullptr && stop->oldest < stop->statement;
}
bool canTakeNewRoad() {
    const DebugStop *stop = shownStop();
    return stop != nullptr && stop->statement < stop->newest;
}
bool anyBreakpoints() { return !breakpoints().empty(); }

}  // namespace numalink
