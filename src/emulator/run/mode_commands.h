// The commands of a run's programs that act as on the calculator only with the setting CalculatorModes. Graphical
// thread, ahead of a run.
#pragma once

#include <string>
#include <vector>

namespace numalink {

// The names, in calculator codes, of those in the program that is started and in what it calls; each once.
std::vector<std::string> modeCommandsOfRun();

}  // namespace numalink
