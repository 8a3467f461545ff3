// How wide and high the user has made the panes beside the view, kept in the settings. Graphical thread only.
#pragma once

#include <QSize>

class QDockWidget;

namespace numalink {

// The size that a pane had when it was last noted, in this run or the one before; an empty one where it never was.
QSize paneSize(const QDockWidget *pane);

void notePaneSize(const QDockWidget *pane);  // nothing for one that is hidden or floats

void keepPaneSizes();  // those on view are noted, and all are put into the settings, which aren't written
void forgetPaneSizes();

}  // namespace numalink
