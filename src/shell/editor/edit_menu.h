// The context menu of the program view. Graphical thread only.
#pragma once

namespace numalink {

void connectEditMenu();

}  // namespace numalink
