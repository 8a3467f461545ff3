// The look that every wait and long walk takes at whether the run still goes on, the passes of the waits, and how a run
// ends by itself. Run thread, but for runWake.
#pragma once

#include "emulator/machine/key_port.h"
#include "emulator/machine/machine.h"

namespace numalink {

inline constexpr int executeKey = 31;  // EXE

enum class RunEnd { running, end, triangle, cursor, input, limit, memory, nothingToRun };

// Set by a run thread when the run ends by itself: keys, statements or memory gave out. runStart clears it.
extern std::atomic<bool> runHalted;

// Ends the run where it stands, as a stop does; the first cause counts.
void runHalt(RunEnd cause);

inline bool runGoesOn() {
    return emulatorRunning.load(std::memory_order_relaxed) && !runHalted.load(std::memory_order_relaxed);
}

// The head of each pass of a wait: what keyPort gives; noKeyAnyMore when the run doesn't go on. An observer comes in
// between.
int waitPassKey(RunEnd where);
int takeWaitKey(RunEnd where);  // the same without the observer
// What GetKey gives, and milliseconds as waits count them; an observer comes in between here too.
int takeGetKey();
std::uint64_t waitTicks();
// keyCode becomes 0 unless another key than the one seen has come in between.
void clearKey(int seen);
// Sleeps for so long; a stop ends it. All that passes of waits were to sleep is summed, slept or not.
extern std::uint64_t waitMilliseconds;
void waitPassSleep(std::uint64_t milliseconds);
// The pace of a pass: at full speed it sleeps as long, since nobody is served by a processor that spins on a wait.
void waitPassPace(int units);

// The head of each pass of long work within a statement: runGoesOn, behind a look at whether an observer wants to stop
// here.
bool workGoesOn();
// Ahead of each evaluation of an expression that a call repeats: false when the run doesn't go on. A run that has a
// limit of statements has one of these too, and ends there.
bool takeWork();
std::uint64_t workDoneSoFar();
void workDoneAgain(std::uint64_t done);  // the count as it was at an earlier statement

// An expression that is evaluated beside the run has so many evaluations within calls; what needs more, or waits, gives
// up without an end of the run. Until endAside, which tells whether it had to.
void beginAside(std::uint64_t evaluations);
bool endAside();
bool isAside();  // nothing may wait, nor draw
void giveUpAside();

// Blocks until due is set and runWake follows, or the run doesn't go on.
void waitForWake(const std::atomic<bool> &due);

// What the runner alone asks.
void workBegin(std::uint64_t limit);  // so many evaluations by takeWork; 0: no limit
void resetRunEnd(RunEnd cause);       // a new run: not halted, with that as what runEndCause tells
RunEnd runEndCause();
void runWake();  // any thread; behind clearing emulatorRunning: ends the sleeps of waits, and waitForWake looks

}  // namespace numalink
