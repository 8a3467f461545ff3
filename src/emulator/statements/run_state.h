// The record of one run thread, the ways out of a statement, and the look that every wait and long walk takes at
// whether the run still goes on. Run thread.
#pragma once

#include <atomic>

#include "emulator/machine/machine.h"

namespace numalink {

inline constexpr int executeKey = 31;  // EXE

enum class RunEnd { running, end, triangle, cursor, input, limit, memory, nothingToRun };

struct RunState {
    const ProgramCell *program = nullptr;  // its cells, ending in 0xFF
    int programIndex = 0;
    int position = 0;         // the current cell of the program
    int statementLength = 0;  // cells of the statement in the program
    int cellCount = 0;        // cells still to be dealt with; 0: nothing is left to do
    ProgramCell statement[statementLimit];
    PixelColor color = pixelColor::blue;
    bool forContinuing = false;  // set by Next for the For that it jumps to
};

enum class WayOut {
    goesOn,      // a prefix, or not this row's after all: later rows, then the bare expression
    handled,     // cellCount is 0
    jump,        // position is set: the loop goes on at the statement there
    programEnds  // at once, errorFlag not looked at
};

// Set by a run thread when the run ends by itself: keys, statements or memory gave out. runStart clears it.
extern std::atomic<bool> runHalted;

// Ends the run where it stands, as a stop does; the first cause counts.
void runHalt(RunEnd cause);

inline bool runGoesOn() {
    return emulatorRunning.load(std::memory_order_relaxed) && !runHalted.load(std::memory_order_relaxed);
}

// The head of each pass of a wait: lets keyPort put in a key and gives what keyCode holds; noKeyAnyMore when the run
// doesn't go on.
inline constexpr int noKeyAnyMore = -1;
int waitPassKey(RunEnd where);
// keyCode becomes 0 unless another key than the one seen has come in between.
void clearKey(int seen);
// Sleeps for so long; a stop ends it.
void waitPassSleep(std::uint64_t milliseconds);
// The pace of a pass: at full speed it sleeps as long, since nobody is served by a processor that spins on a wait.
void waitPassPace(int units);

}  // namespace numalink
