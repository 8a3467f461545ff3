// Where the emulated calculator stands: over the view, or in a dock beside the program, which stays to be seen.
// Graphical thread only.
#pragma once

namespace numalink {

bool besideProgram();
void rememberBeside(bool beside);  // the setting alone

void makeCalculatorDock();  // ahead of other docks, which come to stand below it
void makeRoomBeside();      // a larger main window, where the screen has room; all of it stays on the screen
void placeEmulator();       // moves emulatorWindow to the place that the setting names; hidden as it was
void showEmulatorPlace();
void fitEmulatorPlace();  // room for the key pad, and for the mode line above it
void hideEmulatorPlace();

void forgetEmulatorPlace();

}  // namespace numalink
