// A column beside the program, with a row for each block that can be seen: what the columns of line numbers and of
// folds share. Graphical thread only.
#pragma once

#include <QRect>
#include <QString>
#include <QTextBlock>
#include <functional>

class QEvent;
class QWidget;

namespace numalink {

struct BlockColumn {
    void (*paint)();
    void (*clicked)(const QTextBlock &block);   // by the left button
    QString (*tipAt)(const QTextBlock &block);  // plain text, may be empty; the block may be invalid
};
// What a column does with its events: paints, tells, and passes the wheel on to the program.
bool serveBlockColumn(QWidget *column, QEvent *event, const BlockColumn &acts);

// From the top on, each block that can be seen with its row in the column's own dots.
void eachShownBlock(const QWidget &column, const std::function<void(const QTextBlock &, const QRect &)> &act);

}  // namespace numalink
