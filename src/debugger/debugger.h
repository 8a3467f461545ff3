// A run that can be stopped ahead of any statement, looked at, gone on with and gone back in. The run thread stops
// inside of its observer; a stopped run ends by all that ends a wait. Commands come from one thread: the graphical one,
// or in its place a reader of requests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "debugger/places.h"
#include "emulator/machine/run_waits.h"

namespace numalink {

enum class StopReason {
    none,
    entry,       // ahead of the first statement
    breakpoint,  // at a statement
    changed,     // what a breakpoint of data watches
    error,       // a report
    step,        // its end
    pause,
    end,          // of the program, in its last wait
    backAtStart,  // nothing recorded lies further back
};

struct DebugStop {
    std::uint64_t number = 0;  // from 1, another for each stop of the process
    StopReason reason = StopReason::none;
    int breakpoint = 0;           // its id, of breakpoint and changed
    std::string detail;           // the report; "A: 1 -> 2"; what is wrong with a condition
    DebugPlace place;             // the statement that comes next; the one in progress where isWithin
    bool isWithin = false;        // within a statement: at a report, or in a wait
    bool isWaiting = false;       // in a wait for a key
    bool isAtEnd = false;         // that wait is the end of the program
    std::uint64_t statement = 0;  // statements that have been run, the one in progress excluded
    std::uint64_t newest = 0;     // the same where the record ends; greater than statement: the run stands in its past
    std::uint64_t oldest = 0;     // how far back the record goes; newest: there is no record
    bool isNewRoad = false;       // what was recorded behind here has been forgotten at this stop
    int depth = 0;                // of calls, 0 for the program that was started
};

enum class DebugState { off, runs, stopped };

// How errors stop a run.
enum class ErrorStops { none, first, every };

struct DebugOptions {
    bool stopAtEntry = false;
    bool stopAtEnd = false;   // in the wait that a program ends in
    bool breakpoints = true;  // they count
    bool records = false;     // for going back
    ErrorStops errors = ErrorStops::none;
};

// Told on the run thread, which doesn't wait for it beyond the call: the state has changed. It may give commands, but
// not debugEnd. Set before debugBegin.
extern void (*debugStateChanged)();

// Follows the run that is on, or the next one. In a run that is on, the record begins where it stands. debugEnd lets a
// stopped run go on; both are harmless when nothing is to be done. debugForget: the run is over, or another is about to
// be loaded; what was recorded goes.
void debugBegin(const DebugOptions &options);
void debugEnd();
void debugForget();
void debugSetOptions(const DebugOptions &options);  // at any time; records that go off are forgotten
DebugOptions debugOptions();

DebugState debugState();
DebugStop debugStop();  // of a stopped run
RunEnd debugWaitsAt();  // the wait that the run is in, of those that a key ends; running: none

// The programs in progress, the innermost first: the statement to come, then each Prog.
std::vector<DebugPlace> debugCalls();

enum class DebugStep {
    statement,  // the next statement, into Prog
    over,       // the next of this program or of its callers
    out,        // behind the Prog that called it
    line,       // the next line, over Prog
    onward      // to a breakpoint or a wait's end
};
// False when the run isn't stopped. Breakpoints stop every one of them.
bool debugStep(DebugStep step);
bool debugRunTo(const DebugPlace &place);
void debugPause();

enum class DebugBack {
    statement,
    over,        // the one before of this program or its callers
    breakpoint,  // the last place at which a breakpoint would have stopped
    change       // ahead of the statement that last changed the target
};
// False when the run isn't stopped, nothing is recorded, or the target isn't known. The run stops again by itself;
// where nothing is found, at the oldest statement.
bool debugBack(DebugBack back, const std::string &target = {});
bool debugGoTo(std::uint64_t statement);  // of those recorded

// A way that the run repeats unseen, back or to where a moment was saved, and how much of it is over. debugPause ends a
// way back where it began, and stops behind one to a moment. Any thread.
struct DebugWay {
    enum class Sort { none, back, toMoment } sort = Sort::none;
    int percent = 0;
};
DebugWay debugWay();

// In the past of a run: what was recorded behind here is forgotten, and the run goes its own way from here on, with new
// keys and its own clock. A changed value does so by itself.
void debugNewRoad();

// What the record takes.
struct DebugRecord {
    std::uint64_t statements = 0, bytes = 0, keyframes = 0;
};
DebugRecord debugRecord();

}  // namespace numalink
