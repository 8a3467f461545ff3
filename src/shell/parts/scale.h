// Sizes that follow the desktop's: a layout grows with its texts, and a dot of a calculator's display is a whole number
// of the screen's pixels at every scale. Graphical thread only.
#pragma once

#include <QRectF>

class QWidget;

namespace numalink {

// How large the desktop has its texts: 1 for the usual 96 dots an inch, never less, at most 4. Stays the same for as
// long as the program runs.
double textScale();
int grown(int pixels);  // what a layout for the usual texts has as so many pixels
// The largest whole multiple of a size that textScale asks for, rounded to the nearest: for faces made of dots.
int grownWhole(int pixels);

// The size of a dot nearest to that many of the window's pixels, which differ from the screen's where the platform
// scales. At least one pixel of the screen.
double wholeDot(const QWidget *widget, double pixels);
// The largest one, of pixels up to limit, at which so many dots have room; at least one pixel of the screen.
double largestDot(const QWidget *widget, const QSizeF &room, const QSize &dots, int limit);
// The place on the grid of the screen's pixels nearest to a place in widget.
QPointF onPixel(const QWidget *widget, const QPointF &place);

}  // namespace numalink
