// Items that come as planes of dots: pictures and screen copies. Graphical thread. Hostile heads and short data are
// drawn as far as they reach.
#pragma once

#include "platform/bytes.h"
#include "platform/surface.h"

namespace numalink {

struct PictureSize {
    int width = 0;
    int height = 0;
};
PictureSize pictureSize(ByteView head);  // as the head tells, 0 and 0 for a short one

// Fills the picture's rectangle and draws its planes over each other. A picture of several sheets brings a box,
// and its first sheet is drawn. What lies outside of the surface is dropped.
void drawPicture(Surface &surface, ByteView head, ByteView data);

// 128 by 64 dots: blue, green and orange, or black for one plane.
void drawScreenCopy(Surface &surface, ByteView data, int planes);

}  // namespace numalink
