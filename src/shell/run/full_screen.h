// The emulated display over the whole screen. Graphical thread only.
#pragma once

namespace numalink {

void fullScreenEnter();  // with a box, and nothing changed, where this build has no full screen
void fullScreenLeave();  // harmless when it is off
bool fullScreenActive();
void fullScreenRepaint();
void forgetFullScreen();

}  // namespace numalink
