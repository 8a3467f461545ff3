// What of the screens is on display, and values as text. The run thread draws; the window takes copies under the
// display lock, which is held for the copy alone.
#pragma once

#include <string>

#include "emulator/machine/cells.h"

namespace numalink {

std::string valueText(const ProgramCell &cell);                // calculator codes; empty for what has no text
void displayValue(const ProgramCell &cell, PixelColor color);  // a string, a number, a matrix; else an empty line
const Surface &matrixScreen();

// Brings the screen of the mode on display if anything has changed since the last time, and then tells the user
// interface (displayChanged). showCross: the graph cursor at X and Y. Run thread.
void refreshScreen(bool showCross);

// Any thread. A copy of the display (128 by 64) with its change number; false, with nothing copied, when seen is the
// number still.
bool displayCopy(Surface &target, std::uint64_t &seen);
Surface displayNow();
std::string displayText();  // UTF-8: the rows of the text screen that aren't blank, each with its line end

}  // namespace numalink
