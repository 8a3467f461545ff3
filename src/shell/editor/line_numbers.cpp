#include "shell/editor/line_numbers.h"

#include <QApplication>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>

#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"

namespace numalink {

namespace {

constexpr int margin = 4;          // pixels right of a number
constexpr int largestPixels = 15;  // of the numbers' face
constexpr int smallestPixels = 7;

// The largest face in which the greatest number fits.
QFont numberFont(int greatest, int width) {
    QFont font = lineNumberEdit->font();
    const QString widest(QString::number(greatest).size(), QLatin1Char('8'));
    for (int pixels = largestPixels; pixels >= smallestPixels; pixels--) {
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
        const int top = programEdit->cursorRect(QTextCursor(block)).top() + offset;
        if (top > lineNumberEdit->height()) break;
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
        case QEvent::Wheel:
            QCoreApplication::sendEvent(programEdit->viewport(), event);
            return true;
        default:
            return false;
    }
}

}  // namespace

void connectLineNumbers() { hookEvents(lineNumberEdit, columnEvent); }

void repaintLineNumbers() {
    if (lineNumberEdit != nullptr) lineNumberEdit->update();
}

}  // namespace numalink
