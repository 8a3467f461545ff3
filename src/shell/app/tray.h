// The icon in the notification area, behind which a minimised window lives. Graphical thread only.
#pragma once

namespace numalink {

void addTrayIcon();
void removeTrayIcon();
bool trayAvailable();  // without one, minimising only minimises: the program must stay reachable
void hideToTray();     // with the windows over it; it comes back by itself when the notification area goes
void raiseMainWindow();

}  // namespace numalink
