// The settings dialog and its command. Graphical thread only.
#pragma once

#include <string>
#include <vector>

namespace numalink {

// Handlers of the command table and of the status bar's link.
void changeSettings();
void choosePort();  // the same dialog, open at the page of the port

// The serial devices that the dialog offers, and what runs when port or type were changed by OK. The link puts in its
// own at start-up; until then none is offered and nothing runs.
extern std::vector<std::string> (*listSerialPorts)();
extern void (*linkSettingsChanged)();

}  // namespace numalink
