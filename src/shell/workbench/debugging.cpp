#include "shell/workbench/debugging.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QTimer>
#include <atomic>
#include <filesystem>
#include <set>

#include "debugger/breakpoint_file.h"
#include "debugger/breakpoints.h"
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
#include "shell/tree/selection.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int patience = 150;  // milliseconds that a step may take before the panes turn grey

struct Debugging {
    bool follows = false;
    bool stopAtEntry = false;  // the next run
    bool firstError = false;
    bool isStopped = false;
    DebugStop stop;
    unsigned told = 0;        // states told, so that a late look knows that it is out of date
    ItemId started = noItem;  // what the run began with
    ItemId shown = noItem;    // what a stop has brought to view
    std::set<ItemId> storedSince;
    bool keepTold = false;  // that the breakpoints can't be kept has been told
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
    if (!state.isStopped) {
        QTimer::singleShot(patience, qApp, [told = state.told] {
            if (state.told == told) tellChange();
        });
        return;
    }
    state.stop = debugStop();
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
    breakpointsFollowLoaded();
    debugBegin(optionsNow());
    state.stopAtEntry = false;
    tellChange();
}

void followNoMore() {
    if (!state.follows) return;
    const bool goBack = state.shown != noItem && state.shown == viewItemId && state.started != viewItemId;
    const ItemId started = state.started;
    state.follows = state.isStopped = false;
    debugEnd();
    debugForget();
    tellChange();
    if (goBack && storeReadEntry(started)) selectItem(started);
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
    if (emulatorShown() && state.follows) return state.isStopped;
    if (emulatorShown() || selectedKind() != kind::program || !storeProgramFirst()) return false;
    if (!beginFollowing()) return false;
    state.stopAtEntry = true;
    emulatorToggle();
    state.stopAtEntry = false;
    return false;
}

void keepBreakpoints() {
    if (breakpointsSave(libraryFolder())) {
        state.keepTold = false;
    } else if (!state.keepTold) {
        state.keepTold = true;
        tellUser(Text::breakpointsNotKept);
    }
}

void breakpointsAreOthers() {
    QMetaObject::invokeMethod(
        qApp,
        [] {
            if (mainWindow == nullptr) return;
            keepBreakpoints();
            tellChange();
        },
        Qt::QueuedConnection);
}

void programIsStored(ItemId id) {
    StoredItem item;
    if (state.follows) state.storedSince.insert(id);
    if (storeReadItem(id, item)) breakpointsFollow(id, item.data);
    tellChange();
}

void programIsOpened() {
    StoredItem item;
    if (storeReadItem(viewItemId, item)) breakpointsFollow(viewItemId, item.data);
    tellChange();
}

void toggleAt(int line, int statement) {
    if (viewKind != kind::program || !storeProgramFirst()) return;
    breakpointToggle(viewItemId, line, statement);
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
    tellChange();
}

void connectDebugging() {
    debugStateChanged = lookSoon;
    runBegins = follow;
    runIsOver = followNoMore;
    programOpened = programIsOpened;
    programStored = programIsStored;
    lineNumberClicked = toggleBreakpointOfLine;
    loadBreakpoints();
}

void forgetDebugging() {
    debugStateChanged = nullptr;
    breakpointsChanged = nullptr;
    runBegins = runIsOver = programOpened = debuggingChanged = [] {};
    programStored = [](ItemId) {};
    lineNumberClicked = [](int) {};
    lineMarkOf = [](int) { return LineMark{}; };
    debugForget();
    breakpointsSet({});
    state = {};
    lookDue = false;
}

const DebugStop *shownStop() { return state.follows && state.isStopped ? &state.stop : nullptr; }
bool runIsFollowed() { return state.follows; }
bool storedSinceStart(ItemId item) { return state.storedSince.contains(item); }

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
    const TextStatement at = statementAtCaret();
    if (!emulatorShown()) {
        if (!stoppedOrStarts() && !emulatorShown()) return;
        // The run that has just begun stops ahead of its first statement; it goes on to here from there.
        QTimer::singleShot(patience, qApp, [at, item = viewItemId] {
            if (shownStop() != nullptr)
                debugRunTo({.item = item, .program = programOfItem(item), .line = at.line, .statement = at.statement});
        });
        return;
    }
    if (shownStop() != nullptr)
        debugRunTo(
            {.item = viewItemId, .program = programOfItem(viewItemId), .line = at.line, .statement = at.statement});
}

void debugBackBy(DebugBack back, const std::string &target) {
    if (shownStop() != nullptr) debugBack(back, target);
}

void debugTakeNewRoad() {
    if (shownStop() == nullptr) return;
    debugNewRoad();
    state.stop = debugStop();
    tellChange();
}

void toggleBreakpoint() {
    const TextStatement at = statementAtCaret();
    toggleAt(at.line, at.statement);
}

void toggleBreakpointOfLine(int line) { toggleAt(line, 0); }

void toggleBeside() {
    if (state.follows && besideProgram()) {
        // Over the view nothing can be stepped through: the run goes on by itself.
        state.follows = state.isStopped = false;
        debugEnd();
    }
    const bool beside = !besideProgram();
    if (showBesideProgram(beside) && beside && emulatorShown()) follow();
    showWorkbench(besideProgram());
    tellChange();
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
