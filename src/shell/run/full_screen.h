// The emulated display over the whole screen. Graphical thread only.
#pragma once

#include <QRect>

class QWidget;

namespace numalink {

void fullScreenEnter();      // with a box, and nothing changed, where this build has no full screen
void fullScreenLeave();      // harmless when it is off
QWidget *fullScreenShown();  // its window, null while it is off
QRect fullScreenDisplay();   // where the display stands in that window
void fullScreenRepaint();
void forgetFullScreen();

}  // namespace numalink
