#include "shell/editor/line_numbers.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolTip>
#include <algorithm>

#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/own_colors.h"
#include "shell/parts/scale.h"

namespace numalink {

namespace {

constexpr int margin = 4;          // pixels right of a number
constexpr int largestPixels = 15;  // of the numbers' face
constexpr int smallestPixels = 7;
constexpr int heatWidth = 3, signSize = 9;  // pixels

// The largest face in which the greatest number fits.
QFont numberFont(int greatest, int width) {
    QFont font = lineNumberEdit->font();
    const QString widest(QString::number(greatest).size(), QLatin1Char('8'));
    for (int pixels = grown(largestPixels); pixels >= smallestPixels; pixels--) {
        font.setPixelSize(pixels);
        if (QFontMetrics(font).horizontalAdvance(widest) <= width - 2 * margin) break;
    }
    return font;
}

// A character of another face makes its line higher.
int baselineOf(const QTextBlock &block) {
    const QTextLayout *layout = block.layout();
    return layout->lineCount() > 0 ? qRound(layout->lineAt(0).ascent()) : QFontMetrics(programEdit->font()).ascent();
}

// Left of the number: a disc or ring for a breakpoint, an arrow for where a run stands, a bar for heat.
void paintMark(QPainter &painter, const LineMark &mark, const QRect &row) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette &palette = lineNumberEdit->palette();
    const QColor red = ownColor(OwnColor::breakpoint, palette);
    if (mark.heat > 0) {
        const int length = std::max(1, qRound(mark.heat * (row.height() - 2)));
        painter.fillRect(QRect(0, row.bottom() - length, heatWidth, length), ownColor(OwnColor::heat, palette));
    }
    const int size = std::min(grown(signSize), row.height() - 2);
    const QRectF disc(heatWidth + 1, row.center().y() - size / 2.0 + 0.5, size, size);
    painter.setPen(QPen(red, 1.5));
    painter.setBrush(mark.sign == LineSign::breakpoint ? QBrush(red) : QBrush(Qt::NoBrush));
    if (mark.sign != LineSign::none) painter.drawEllipse(disc);
    if (mark.isNext) {
        const QPointF tip(disc.right() + 1, disc.center().y());
        painter.setPen(QPen(palette.color(QPalette::Base), 1));
        painter.setBrush(palette.color(QPalette::Text));
        painter.drawPolygon(
            QPolygonF({QPointF(disc.left(), disc.top() + 1), tip, QPointF(disc.left(), disc.bottom() - 1)}));
    }
    painter.restore();
}

bool showTip(const QHelpEvent &event) {
    const QTextBlock block = blockAtHeight(*lineNumberEdit, event.pos().y());
    const QString words = block.isValid() ? lineMarkOf(block.blockNumber() + 1).words : QString();
    words.isEmpty() ? QToolTip::hideText()
                    : QToolTip::showText(event.globalPos(), words.toHtmlEscaped(), lineNumberEdit);
    return true;
}

bool clicked(const QMouseEvent &event) {
    const QTextBlock block = blockAtHeight(*lineNumberEdit, event.position().toPoint().y());
    if (event.button() == Qt::LeftButton && block.isValid()) lineNumberClicked(block.blockNumber() + 1);
    return true;
}

void paintNumbers() {
    QPainter painter(lineNumberEdit);
    const QPalette &palette = lineNumberEdit->palette();
    painter.fillRect(lineNumberEdit->rect(), palette.color(QPalette::Window));
    painter.setPen(palette.color(QPalette::WindowText));
    painter.setFont(numberFont(programEdit->blockCount(), lineNumberEdit->width()));
    const QWidget *viewport = programEdit->viewport();
    const int offset = viewport->mapTo(clientArea, QPoint(0, 0)).y() - lineNumberEdit->y();
    for (QTextBlock block = programEdit->cursorForPosition(QPoint(0, 0)).block(); block.isValid();
         block = block.next()) {
        if (!block.isVisible()) continue;
        const QRect place = programEdit->cursorRect(QTextCursor(block));
        const int top = place.top() + offset;
        if (top > lineNumberEdit->height()) break;
        paintMark(painter, lineMarkOf(block.blockNumber() + 1), QRect(0, top, lineNumberEdit->width(), place.height()));
        const QString number = QString::number(block.blockNumber() + 1);
        const int width = painter.fontMetrics().horizontalAdvance(number);
        painter.drawText(lineNumberEdit->width() - margin - width, top + baselineOf(block), number);
    }
}

bool columnEvent(QWidget *, QEvent *event) {
    switch (event->type()) {
        case QEvent::Paint:
            paintNumbers();
            return true;
        case QEvent::MouseButtonPress:
            return clicked(*static_cast<QMouseEvent *>(event));
        case QEvent::ToolTip:
            return showTip(*static_cast<QHelpEvent *>(event));
        case QEvent::Wheel:
            QCoreApplication::sendEvent(programEdit->viewport(), event);
            return true;
        default:
            return false;
    }
}

}  // namespace

QTextBlock blockAtHeight(const QWidget &column, int y) {
    const int offset = column.mapFromGlobal(programEdit->viewport()->mapToGlobal(QPoint(0, 0))).y();
    const QTextBlock block = programEdit->cursorForPosition(QPoint(0, y - offset)).block();
    const QRect place = programEdit->cursorRect(QTextCursor(block));
    return y - offset <= place.bottom() ? block : QTextBlock();
}

void connectLineNumbers() { hookEvents(lineNumberEdit, columnEvent); }

void repaintLineNumbers() {
    if (lineNumberEdit != nullptr) lineNumberEdit->update();
}

}  // namespace numalink
