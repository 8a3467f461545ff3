// What of the screens is on display, and values as text. The run thread draws; the window takes copies under the
// display lock, which is held for the copy alone.
#pragma once

#include <string>

#include "emulator/machine/cells.h"

namespace numalink {

std::string valueText(const ProgramCell &cell);                // calculator codes; empty for what has no text
void displayValue(const ProgramCell &cell, PixelColor color);  // a string, a number, a matrix; else an empty line
const Surface &matrixScreen();
// Whether a dot of the screen that is up is set, as it is drawn by now; false outside. Run thread.
bool dotIsSet(int x, int y);

// The screen of matrices and the display as they were at an earlier statement, to the dot; the other screens and the
// machine come ahead. Run thread.
void displayRestore(const Surface &ofMatrices, const Surface &onDisplay);
// While on, copies of the display stay as they are, whatever is drawn: what is shown has been shown before. Taking it
// off tells the user interface.
void holdDisplay(bool on);

// Brings the screen of the mode on display if anything has changed since the last time, and then tells the user
// interface (displayChanged). showCross: the graph cursor at X and Y. Run thread.
void refreshScreen(bool showCross);

// Any thread. A copy of the display (128 by 64) with its change number; false, with nothing copied, when seen is the
// number still.
bool displayCopy(Surface &target, std::uint64_t &seen);
Surface displayNow();
std::string displayText();   // UTF-8: the rows of the text screen that aren't blank, each with its line end
std::string displayLines();  // the same of all 8 rows, without the blanks at their ends

}  // namespace numalink
