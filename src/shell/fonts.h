// The faces of the program: the calculators' screen face, bundled, and the platform's own. Graphical thread only.
#pragma once

#include <QFont>

namespace numalink {

void loadScreenFace();  // from the program's resources; once
QFont programFont();    // program text: the screen face, 20 pixels high, twice its dots
QFont treeFont();       // the platform's face, and the screen face for calculator symbols

}  // namespace numalink
