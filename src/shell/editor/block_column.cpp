#include "shell/editor/block_column.h"

#include <QCoreApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QToolTip>

#include "shell/parts/main_widgets.h"

namespace numalink {

namespace {

int viewportTop(const QWidget &column) {
    return column.mapFromGlobal(programEdit->viewport()->mapToGlobal(QPoint(0, 0))).y();
}

// An invalid one below the program's end.
QTextBlock blockAtHeight(const QWidget &column, int y) {
    const int offset = viewportTop(column);
    const QTextBlock block = programEdit->cursorForPosition(QPoint(0, y - offset)).block();
    const QRect place = programEdit->cursorRect(QTextCursor(block));
    return y - offset <= place.bottom() ? block : QTextBlock();
}

void showTip(QWidget *column, const QHelpEvent &event, const BlockColumn &acts) {
    const QString words = acts.tipAt(blockAtHeight(*column, event.pos().y()));
    const QString shown = words.toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>"));
    shown.isEmpty() ? QToolTip::hideText() : QToolTip::showText(event.globalPos(), shown, column);
}

void press(const QWidget &column, const QMouseEvent &event, const BlockColumn &acts) {
    const QTextBlock block = blockAtHeight(column, event.position().toPoint().y());
    if (event.button() == Qt::LeftButton && block.isValid()) acts.clicked(block);
}

}  // namespace

bool serveBlockColumn(QWidget *column, QEvent *event, const BlockColumn &acts) {
    switch (event->type()) {
        case QEvent::Paint:
            acts.paint();
            return true;
        case QEvent::MouseButtonPress:
            press(*column, *static_cast<QMouseEvent *>(event), acts);
            return true;
        case QEvent::ToolTip:
            showTip(column, *static_cast<QHelpEvent *>(event), acts);
            return true;
        case QEvent::Wheel:
            QCoreApplication::sendEvent(programEdit->viewport(), event);
            return true;
        default:
            return false;
    }
}

void eachShownBlock(const QWidget &column, const std::function<void(const QTextBlock &, const QRect &)> &act) {
    const int offset = viewportTop(column);
    for (QTextBlock block = programEdit->cursorForPosition(QPoint(0, 0)).block(); block.isValid();
         block = block.next()) {
        if (!block.isVisible()) continue;
        const QRect place = programEdit->cursorRect(QTextCursor(block));
        const int top = place.top() + offset;
        if (top > column.height()) return;
        act(block, QRect(0, top, column.width(), place.height()));
    }
}

}  // namespace numalink
