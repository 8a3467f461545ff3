// Places the parts of the client area, with the tree or without it. Graphical thread only.
#pragma once

namespace numalink {

extern bool treeVisible;

void applyLayout();
void toggleTree();
void forgetLayout();

}  // namespace numalink
