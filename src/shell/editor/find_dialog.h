// Find and Find again in the program on view. Graphical thread only.
#pragma once

namespace numalink {

// Handlers of the command table: nothing unless a program is on view.
void findInProgram();
void findAgain();
void forgetFind();  // the text looked for

}  // namespace numalink
