// The question of an export: which items go into a file, and into what sort of file. Graphical thread only.
#pragma once

#include "telling/user_interface.h"

namespace numalink {

void askExport(ExportQuestion &question);

void forgetExport();

}  // namespace numalink
