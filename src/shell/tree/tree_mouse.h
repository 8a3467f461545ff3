// The item tree in the hands of the user: selecting, dragging, the context menu. Graphical thread only.
#pragma once

namespace numalink {

void connectTree();  // with the library open: shows it
void forgetTree();
bool dragRunning();
void endDrag();  // without a move

}  // namespace numalink
