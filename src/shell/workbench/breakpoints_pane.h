// The pane of all breakpoints: on and off, conditions, counts, and those of data and errors. Graphical thread only.
#pragma once

class QWidget;

namespace numalink {

QWidget *makeBreakpointsPane();
void refreshBreakpoints();
void forgetBreakpointsPane();

}  // namespace numalink
