// The icon in the notification area, behind which a minimised window lives. Graphical thread only.
#pragma once

namespace numalink {

void addTrayIcon();
void removeTrayIcon();
bool trayAvailable();  // without one, minimising only minimises: the program must stay reachable
void raiseMainWindow();

}  // namespace numalink
