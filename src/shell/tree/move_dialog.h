// Moving without a mouse. Graphical thread only.
#pragma once

namespace numalink {

void moveSelectedItem();  // the command: asks for a folder that takes what is selected, and moves it there as a drop
                          // does

}  // namespace numalink
