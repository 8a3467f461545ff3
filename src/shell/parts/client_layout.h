// Places the parts of the client area, with the tree or without it. Graphical thread only.
#pragma once

class QWidget;

namespace numalink {

extern bool treeVisible;
extern QWidget *treeFilterBar;  // above the tree while it is shown; null until it was asked for

void applyLayout();
void toggleTree();
void forgetLayout();

}  // namespace numalink
