// The faces of the program: the calculators' screen face, bundled, and the platform's own. Graphical thread only.
#pragma once

#include <QFont>

namespace numalink {

void loadScreenFace();  // from the program's resources; once
QFont programFont();    // program text: the screen face, 21 pixels high, 2 pixels a dot
QFont treeFont();       // the platform's face, and the screen face for calculator symbols

}  // namespace numalink
