// Drawn items on screen: a surface in a scroll area inside containerWindow, at the zoom of the View menu. Graphical
// thread only.
#pragma once

#include "platform/surface.h"

class QKeyEvent;

namespace numalink {

inline constexpr int zoomLimit = 6;
inline constexpr int zoomToFit = 0;

void makeSurfaceView();  // once containerWindow is there
void forgetSurfaceView();

// Shows the surface with its top left corner in sight. keys, when given, gets the keys of the view first.
void showSurface(Surface surface, bool (*keys)(const QKeyEvent &key));
void changeSurface(Surface surface);  // the same view, drawn anew
void hideSurface();

// Scrolls until these dots are in sight.
void showSurfacePart(int x, int y, int width, int height);

// Pixels a dot, 1 to zoomLimit, or zoomToFit for the largest whole number at which all is in sight.
int surfaceZoom();
void setSurfaceZoom(int zoom);

}  // namespace numalink
