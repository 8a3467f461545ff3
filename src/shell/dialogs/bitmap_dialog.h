// The question of a bitmap: the picture as it is and as it will be, and the choice of the raster type. Graphical thread
// only.
#pragma once

#include "telling/user_interface.h"

namespace numalink {

void askBitmap(BitmapQuestion &question);

}  // namespace numalink
