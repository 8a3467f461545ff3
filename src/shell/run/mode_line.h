// The lines above the display: about commands of the program that don't act as on the calculator, and about where the
// program was last stopped. Each has a button. Graphical thread only.
#pragma once

#include <string>
#include <vector>

namespace numalink {

// Shows the line over the top of the emulator's window, or none without commands. turnOn is what its button does.
void showModeLine(const std::vector<std::string> &commands, void (*turnOn)());
// The same with the time at which the program was stopped, or none without it.
void showStopLine(const std::string &time, void (*goOn)());
void dismissStopLine();  // who presses a key plays on, and wants no other way on
void placeModeLine();    // the window has another size
int modeLineHeight();    // pixels that the lines take; 0 while there is none
void forgetModeLine();   // with the window

}  // namespace numalink
