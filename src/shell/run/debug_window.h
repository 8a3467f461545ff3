// The small window with what a run holds in the table of matrices, for those who set DisplayDebug in the settings'
// file. Graphical thread only.
#pragma once

namespace numalink {

void showDebugWindow();  // without taking the focus
void hideDebugWindow();
void updateDebugWindow();
void forgetDebugWindow();

}  // namespace numalink
