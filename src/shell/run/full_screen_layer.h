// The small layer that takes the screen for a window. A build may do without it (NUMALINK_FULL_SCREEN off).
// Graphical thread only.
#pragma once

class QWidget;

namespace numalink {

// 0: it failed, the caller goes on without. 1: the window shows 320 by 240 dots, 2: 640 by 480.
int FSDLLCreate(QWidget *window);
void FSDLLDestroy();

}  // namespace numalink
