// The pane of watches: expressions of the calculator's language, evaluated anew at each stop. Graphical thread only.
#pragma once

class QWidget;

namespace numalink {

QWidget *makeWatchesPane();
void refreshWatches();
void forgetWatchesPane();

}  // namespace numalink
