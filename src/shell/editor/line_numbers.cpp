#include "shell/editor/line_numbers.h"

#include <QPainter>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextLayout>
#include <algorithm>

#include "shell/editor/block_column.h"
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

// What marks the line, and below it what marks the lines that it hides.
QString tipAt(const QTextBlock &block) {
    if (!block.isValid()) return {};
    QStringList words = {lineMarkOf(block.blockNumber() + 1).words};
    const QStringList hidden = hiddenMarksBelow(block).lines;
    if (!hidden.isEmpty()) words << textOf(Text::foldedBreakpoints, {hidden.join(QStringLiteral(", ")).toStdString()});
    words.removeAll(QString());
    return words.join(QLatin1Char('\n'));
}

void clicked(const QTextBlock &block) { lineNumberClicked(block.blockNumber() + 1); }

void paintNumbers() {
    QPainter painter(lineNumberEdit);
    const QPalette &palette = lineNumberEdit->palette();
    painter.fillRect(lineNumberEdit->rect(), palette.color(QPalette::Window));
    painter.setPen(palette.color(QPalette::WindowText));
    painter.setFont(numberFont(programEdit->blockCount(), lineNumberEdit->width()));
    eachShownBlock(*lineNumberEdit, [&](const QTextBlock &block, const QRect &row) {
        paintMark(painter, lineMarkOf(block.blockNumber() + 1), hiddenMarksBelow(block), row);
        const QString number = QString::number(block.blockNumber() + 1);
        const int width = painter.fontMetrics().horizontalAdvance(number);
        painter.drawText(row.width() - margin - width, row.top() + baselineOf(block), number);
    });
}

bool columnEvent(QWidget *column, QEvent *event) {
    return serveBlockColumn(column, event, {paintNumbers, clicked, tipAt});
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

void connectLineNumbers() { hookEvents(lineNumberEdit, columnEvent); }

void repaintLineNumbers() {
    if (lineNumberEdit != nullptr) lineNumberEdit->update();
}

}  // namespace numalink
