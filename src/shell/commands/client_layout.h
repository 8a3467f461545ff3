// How the main window's client area is parted, with and without the tree's column. Graphical thread only.
#pragma once

namespace numalink {

extern bool treeVisible;

void applyLayout();  // places the parts of the main window
void toggleTree();
void forgetLayout();

}  // namespace numalink
