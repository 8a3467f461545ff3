// The program's own mouse pointers. Graphical thread only.
#pragma once

#include <QCursor>

namespace numalink {

QCursor linkCursor();
QCursor dropCursor();
QCursor noDropCursor();

}  // namespace numalink
