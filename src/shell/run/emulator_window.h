// The emulated calculator on screen: its display and key pad in place of a view, fed by a run. Graphical thread only,
// but for displayMarked.
#pragma once

#include "calculator/item_kinds.h"

class QWidget;

namespace numalink {

struct Moment;

// The Emulate command: starts the selected program, or stops the run.
void emulatorToggle();

// The emulator's share of leaving a view: stops the run, joins its threads and puts the surface away. Harmless when
// none runs.
void emulatorStop();
bool emulatorShown();
ItemId emulatedItem();  // the program that was started last

// Starts the program from a moment, in place of the run that is on.
void emulateFrom(ItemId program, const Moment &moment);

// Puts the calculator beside the program, or over the view; at once where it is shown. False when the view couldn't be
// left.
bool showBesideProgram(bool beside);

// For who follows runs: one is loaded and about to begin; the last one is over, its threads joined.
inline void (*runBegins)() = [] {};
inline void (*runIsOver)() = [] {};

// So many times as fast as the calculator, 0 for full speed; a run goes on at it at once.
void chooseSpeed(int factor);

// The display has changed: leaves a mark, so that the window repaints soon, at most 60 times a second. Any thread.
void displayMarked();

// Boxes of a run: over which window one stands, beside the display that it speaks of, and where a halt leads to.
QWidget *runWindow();                   // the full screen while it is on, else the main window
void placeBesideDisplay(QWidget *box);  // ahead of its showing
void goToRunFault();                    // stops the run and shows the statement at which it halted

void makeEmulatorWindow();  // once clientArea is there
void zoomEmulatorWindow();  // the zoom of the View menu has changed
void forgetEmulatorWindow();

}  // namespace numalink
