// Where the emulated calculator stands: over the view, or in a dock beside the program, which stays to be seen.
// Graphical thread only.
#pragma once

class QDockWidget;

namespace numalink {

bool besideProgram();
void rememberBeside(bool beside);  // the setting alone

void placeEmulator();  // moves emulatorWindow to the place that the setting names; hidden as it was
void showEmulatorPlace();
void hideEmulatorPlace();
QDockWidget *calculatorDock();  // null until it was first needed

void forgetEmulatorPlace();

}  // namespace numalink
