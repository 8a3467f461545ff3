// The settings dialog and its command. Graphical thread only.
#pragma once

#include <string>
#include <vector>

namespace numalink {

void changeSettings();  // handler of the command table

// The serial devices that the dialog offers, and what runs when port or type were changed by OK. The link puts in its
// own at start-up; until then none is offered and nothing runs.
extern std::vector<std::string> (*listSerialPorts)();
extern void (*linkSettingsChanged)();

}  // namespace numalink
