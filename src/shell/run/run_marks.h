// What goes on with a run beside the run itself, at the right of the status bar: a recording with its length and size,
// keys that are played, full speed while its key is held. Graphical thread only.
#pragma once

namespace numalink {

void showRunMarks();  // something has begun or ended; what grows is shown anew by itself
void forgetRunMarks();

}  // namespace numalink
