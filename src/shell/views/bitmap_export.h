// Save as bitmap: a picture or screen copy of the library into a BMP or PNG file. Graphical thread only.
#pragma once

#include <QImage>
#include <string>

#include "platform/surface.h"

namespace numalink {

// Pixels a dot of pictures that leave the window: the zoom of the View menu, and a fixed one where that fits the
// window.
int zoomOfPictures();
QImage zoomedImage(const Surface &surface);  // at that zoom

// Asks for a file, with this name to start from, and writes the surface into it: a BMP dot by dot, a PNG zoomed.
void saveSurface(const Surface &surface, const std::string &utf8Name);

void saveItemAsBitmap();  // handler of the command table: for the selected item

}  // namespace numalink
