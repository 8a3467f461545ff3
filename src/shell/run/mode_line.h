// The line above the display about commands of the program that don't act as on the calculator. Graphical thread only.
#pragma once

#include <string>
#include <vector>

namespace numalink {

// Shows the line over the top of the emulator's window, or none without commands. turnOn is what its button does.
void showModeLine(const std::vector<std::string> &commands, void (*turnOn)());
void placeModeLine();   // the window has another size
int modeLineHeight();   // pixels that the line takes; 0 while there is none
void forgetModeLine();  // with the window

}  // namespace numalink
