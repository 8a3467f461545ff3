// The main window's own events (its size, its close button, files dropped on it), and what its rooms tell upward.
// Graphical thread only.
#pragma once

namespace numalink {

// Ties what the rooms tell upward to the commands; the start-up gives its own two.
void fillUpwardCalls(void (*endProgram)(), bool (*programEnds)());

void connectWindow();

}  // namespace numalink
