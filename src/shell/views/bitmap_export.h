// Save as bitmap: a picture or screen copy of the library into a BMP file. Graphical thread only.
#pragma once

#include <string>

#include "platform/surface.h"

namespace numalink {

// Asks for a file, with this name to start from, and writes the surface into it.
void saveSurface(const Surface &surface, const std::string &utf8Name);

void saveItemAsBitmap();  // handler of the command table: for the selected item

}  // namespace numalink
