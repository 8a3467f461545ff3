// The record of one run thread, and the ways out of a statement. Run thread.
#pragma once

#include <string_view>

#include "emulator/machine/machine.h"

namespace numalink {

struct RunState {
    const ProgramCell *program = nullptr;  // its cells, ending in 0xFF
    int programIndex = 0;
    int position = 0;         // the current cell of the program
    int statementLength = 0;  // cells of the statement in the program
    int cellCount = 0;        // cells still to be dealt with; 0: nothing is left to do
    ProgramCell statement[statementLimit];
    PixelColor color = pixelColor::blue;
    PixelColor sketchColor = pixelColor::blue;  // of points and lines: color where it was told, else that of P/L
    bool forContinuing = false;                 // set by Next for the For that it jumps to
    void (*callProgram)(std::string_view name) = nullptr;  // the runner's: runs a program of the table to its end
};

enum class WayOut {
    goesOn,      // a prefix, or not this row's after all: later rows, then the bare expression
    handled,     // cellCount is 0
    jump,        // position is set: the loop goes on at the statement there
    programEnds  // at once, errorFlag not looked at
};

}  // namespace numalink
