// The column of line numbers beside the program: a number a block, painted where the block stands. Graphical thread
// only.
#pragma once

namespace numalink {

void connectLineNumbers();
void repaintLineNumbers();

}  // namespace numalink
