// How wide and high the user has made the panes beside the view, and where those are that were torn off, kept in the
// settings. Graphical thread only.
#pragma once

#include <QSize>
#include <string>

class QDockWidget;

namespace numalink {

// The size that a pane had when it was last noted, in this run or the one before; an empty one where it never was.
QSize paneSize(const QDockWidget *pane);

void notePaneSize(const QDockWidget *pane);  // nothing for one that is hidden or floats

// A pane that was torn off when the program ended is so again, as large and where it was, if there still is a screen;
// false for any other one. It is in an area already, to which it can go back.
bool tearOffAgain(QDockWidget *pane);
// Shows a pane if it is wanted by then. One that is torn off comes once its main window is there: window managers keep
// it above that only then.
void bringUpPane(QDockWidget *pane, bool (*isWanted)(const QDockWidget *pane));

void keepPaneSizes();  // those on view are noted, and all are put into the settings, which aren't written
bool isPanePlace(const std::string &key);  // whether the setting tells where a pane was torn off to
void forgetPaneSizes();

}  // namespace numalink
