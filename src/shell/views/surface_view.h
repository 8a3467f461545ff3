// Drawn items on screen: a surface in a scroll area inside containerWindow, at the zoom of the View menu. Graphical
// thread only.
#pragma once

#include <QString>

#include "platform/surface.h"

class QKeyEvent;

namespace numalink {

inline constexpr int zoomLimit = 6;
inline constexpr int zoomToFit = 0;

void makeSurfaceView();  // once containerWindow is there
void forgetSurfaceView();

// Draws a part of what is on view, in dots.
using SurfacePart = Surface (*)(int left, int top, int width, int height);
using SurfaceKeys = bool (*)(const QKeyEvent &key);

// Shows a surface with its top left corner in sight.
void showSurface(Surface surface);
// The same for one that is drawn part by part, as it comes into sight. keys gets the keys of the view first.
void showSurfaceInParts(int width, int height, SurfacePart part, SurfaceKeys keys);
void redrawSurface();  // its parts have changed
void hideSurface();
// What a screen reader says of the view: what is shown, and of a table the picked cell.
void describeSurface(const QString &name, const QString &detail);

// Scrolls until these dots are in sight.
void showSurfacePart(int x, int y, int width, int height);

// Pixels of the window a dot, 1 to zoomLimit (nearly, where the platform scales: a dot is whole pixels of the screen),
// or zoomToFit for the largest whole number at which all is in sight.
int surfaceZoom();
void setSurfaceZoom(int zoom);

}  // namespace numalink
