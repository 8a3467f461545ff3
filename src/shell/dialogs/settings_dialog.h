// The settings dialog and its command. Graphical thread only.
#pragma once

namespace numalink {

// Handlers of the command table and of the status bar's link.
void changeSettings();
void choosePort();  // the same dialog, open at the page of the port

// What runs when port or type were changed by OK; the link puts it in.
extern void (*linkSettingsChanged)();

}  // namespace numalink
