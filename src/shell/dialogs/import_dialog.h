// The question where the items of an import go. Graphical thread only.
#pragma once

#include "telling/user_interface.h"

namespace numalink {

void askImport(ImportQuestion &question);

}  // namespace numalink
