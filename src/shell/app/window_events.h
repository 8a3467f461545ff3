// The main window's own events: its size, its close button, files dropped on it.
// Graphical thread only.
#pragma once

namespace numalink {

void connectWindow();

}  // namespace numalink
