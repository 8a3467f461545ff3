// The line above the tree that leaves of it what has a name and is of a kind. Graphical thread only.
#pragma once

namespace numalink {

// With the keyboard in it; shown already, it goes, and with it the filter.
void toggleTreeFilter();
bool treeFilterShown();
void applyTreeFilter();  // to the entries that there are now
void forgetTreeFilter();

}  // namespace numalink
