// The debugger in the window: its commands, and what is known of the run that it follows. A run is followed while the
// calculator stands beside the program. Graphical thread only.
#pragma once

#include <string>
#include <vector>

#include "debugger/debugger.h"

namespace numalink {

void connectDebugging();  // once emulator and views are there and the library is open
void loadBreakpoints();   // of the library that is open, in place of those of another
void forgetDebugging();

const DebugStop *shownStop();                 // where the followed run stands; null while it goes on, or there is none
const std::vector<DebugPlace> &shownCalls();  // of that stop, as debugCalls
// Between a command and the look at what it led to, the stop is shown while the run goes on already, or stands at the
// next one: whoever reads the machine asks here, and else leaves what is shown. It holds until this thread gives the
// next command.
bool valuesCanBeRead();
std::uint64_t shownStopNumber();  // of the last stop: another with each, whatever else is told anew
bool runIsFollowed();
RunEnd runWaitsAt();  // of a followed run that goes on: the wait that it is in; running: none
// The text of this item was stored anew since the run began, so that places of the run no longer fit it.
bool storedSinceStart(ItemId item);
// Brings a place of the run to view, found again where its text has been edited since.
void goToPlace(const DebugPlace &place);
void countStatements(bool count);  // of this run and the next ones
bool countsStatements();
void stopAtFirstError(bool stop);
bool stopsAtFirstError();
void debugPanesChanged();  // a run is recorded while a pane is shown

// After each change of the above, of the breakpoints, and when another program is on view.
inline void (*debuggingChanged)() = [] {};
// While the program on view is edited: what is marked in it moves.
inline void (*marksMoved)() = [] {};
// Another library is open: what was shown of runs goes.
inline void (*shownValuesForgotten)() = [] {};

// The panes stand above this, and say here how they come and go, and whether one is shown.
inline void (*showWorkbench)(bool show) = [](bool) {};
inline bool (*anyPaneShown)() = [] { return false; };

// Commands. Those that move a run start the selected program where none runs, ahead of its first statement.
void debugGoOn();
void debugPauseRun();
void debugStepBy(DebugStep step);
void debugToCaret();
void debugBackBy(DebugBack back, const std::string &target = {});
void debugTakeNewRoad();
void debugValueChanged();               // by hand, at the stop that is shown
void toggleBreakpoint();                // at the caret
void toggleBreakpointOfLine(int line);  // its first statement
void toggleBeside();
void endRun();

// Whether they can do anything.
bool canGoOn();
bool canPause();
bool canGoBack();
bool canTakeNewRoad();
bool anyBreakpoints();

}  // namespace numalink
