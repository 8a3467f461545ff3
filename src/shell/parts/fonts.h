// The calculators' screen face, bundled with the program. Graphical thread only.
#pragma once

#include <QFont>

namespace numalink {

void loadScreenFace();  // from the program's resources; once
QFont programFont();    // program text: the screen face, 21 pixels high, 2 pixels a dot, or a multiple of it
QFont treeFont();       // names in the tree, 12 pixels high, grown with the desktop's texts

}  // namespace numalink
