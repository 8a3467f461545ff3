// Where a run stands, told in the program on view (mark, line numbers) and in a line above it. Graphical thread only.
#pragma once

class QToolBar;

namespace numalink {

void makeStopLine();
QToolBar *debugBar();  // the bar with that line; commands put their buttons ahead of it. Null ahead of makeStopLine
void showStopLine(bool show);
void showStopInProgram();  // marks, line numbers and the line, as things stand now
void forgetStopView();

}  // namespace numalink
