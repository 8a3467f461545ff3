// Items that are there more than once, each group with its likeness. Graphical thread only.
#pragma once

namespace numalink {

void showDuplicates();

}  // namespace numalink
