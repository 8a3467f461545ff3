// The column of line numbers beside the program: a number a block, painted where the block stands, and what marks a
// line. Graphical thread only.
#pragma once

#include <QString>
#include <QStringList>
#include <QTextBlock>

namespace numalink {

enum class LineSign { none, breakpoint, idleBreakpoint };  // the second one is off, or its statement is lost
struct LineMark {
    LineSign sign = LineSign::none;
    bool isNext = false;  // a run stands here
    double heat = 0;      // share of the time of the hottest line
    QString words;        // tool tip
};
// What a line, from 1, is marked by; and what a click on its number does. Nothing while nobody debugs.
inline LineMark (*lineMarkOf)(int line) = [](int) { return LineMark{}; };
inline void (*lineNumberClicked)(int line) = [](int) {};

// What the folded lines below a block that is in sight are marked by.
struct HiddenMarks {
    LineSign sign = LineSign::none;  // the one that counts, if any does
    bool isNext = false;
    QStringList lines;  // with breakpoints
};
HiddenMarks hiddenMarksBelow(const QTextBlock &block);

void connectLineNumbers();
void repaintLineNumbers();

}  // namespace numalink
