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
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int margin = 4;          // pixels right of a number
constexpr int largestPixels = 15;  // of the numbers' face
constexpr int smallestPixels = 7;
constexpr int mostNamed = 20;               // lines, in a tip
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

void paintArrow(QPainter &painter, const QRectF &disc, bool isHidden) {
    const QPalette &palette = lineNumberEdit->palette();
    const QColor text = palette.color(QPalette::Text), base = palette.color(QPalette::Base);
    painter.setPen(QPen(isHidden ? text : base, 1));
    painter.setBrush(isHidden ? base : text);
    painter.drawPolygon(QPolygonF({QPointF(disc.left(), disc.top() + 1), QPointF(disc.right() + 1, disc.center().y()),
                                   QPointF(disc.left(), disc.bottom() - 1)}));
}

// Left of the number: a disc or ring for a breakpoint, an arrow for where a run stands, a bar for heat. What lies in
// the folded lines below peeps out from under the line: half a disc or ring, an arrow that is hollow.
void paintMark(QPainter &painter, const LineMark &mark, const HiddenMarks &hidden, const QRect &row) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette &palette = lineNumberEdit->palette();
    const QColor red = ownColor(OwnColor::breakpoint, palette);
    if (mark.heat > 0) {
        const int length = std::max(1, qRound(mark.heat * (row.height() - 2)));
        painter.fillRect(QRect(0, row.bottom() - length, heatWidth, length), ownColor(OwnColor::heat, palette));
    }
    const int size = std::min(grown(signSize), row.height() - 2);
    QRectF disc(heatWidth + 1, row.center().y() - size / 2.0 + 0.5, size, size);
    const auto brushOf = [&](LineSign sign) {
        return sign == LineSign::breakpoint ? QBrush(red) : QBrush(Qt::NoBrush);
    };
    painter.setPen(QPen(red, 1.5));
    if (hidden.sign != LineSign::none) {
        constexpr int halfTurn = 180 * 16;  // in Qt's units
        painter.setBrush(brushOf(hidden.sign));
        painter.drawChord(QRectF(disc.left(), row.bottom() - size / 2.0, size, size), 0, halfTurn);
        disc.moveTop(row.top() + 1);
    }
    painter.setBrush(brushOf(mark.sign));
    if (mark.sign != LineSign::none) painter.drawEllipse(disc);
    if (mark.isNext || hidden.isNext) paintArrow(painter, disc, !mark.isNext);
    painter.restore();
}

bool showTip(const QHelpEvent &event) {
    const QTextBlock block = blockAtHeight(*lineNumberEdit, event.pos().y());
    QStringList words;
    if (block.isValid()) {
        words << lineMarkOf(block.blockNumber() + 1).words;
        const QStringList hidden = hiddenMarksBelow(block).lines;
        if (!hidden.isEmpty())
            words << textOf(Text::foldedBreakpoints, {hidden.join(QStringLiteral(", ")).toStdString()});
    }
    words.removeAll(QString());
    const QString shown =
        words.join(QLatin1Char('\n')).toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>"));
    shown.isEmpty() ? QToolTip::hideText() : QToolTip::showText(event.globalPos(), shown, lineNumberEdit);
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
        paintMark(painter, lineMarkOf(block.blockNumber() + 1), hiddenMarksBelow(block),
                  QRect(0, top, lineNumberEdit->width(), place.height()));
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

HiddenMarks hiddenMarksBelow(const QTextBlock &block) {
    HiddenMarks marks;
    for (QTextBlock below = block.next(); below.isValid() && !below.isVisible(); below = below.next()) {
        const LineMark mark = lineMarkOf(below.blockNumber() + 1);
        marks.isNext = marks.isNext || mark.isNext;
        if (mark.sign == LineSign::none) continue;
        if (marks.lines.size() < mostNamed)
            marks.lines << QString::number(below.blockNumber() + 1);
        else if (marks.lines.size() == mostNamed)
            marks.lines << QStringLiteral("\u2026");
        if (marks.sign != LineSign::breakpoint) marks.sign = mark.sign;
    }
    return marks;
}

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
