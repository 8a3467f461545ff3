// The pane of calls: the statement to come, and each Prog that led there. Graphical thread only.
#pragma once

class QWidget;

namespace numalink {

QWidget *makeCallsPane();
void refreshCalls();
void forgetCalls();  // those that are shown
void forgetCallsPane();

}  // namespace numalink
