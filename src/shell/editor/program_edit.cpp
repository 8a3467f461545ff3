#include "shell/editor/program_edit.h"

#include <QPainter>
#include <QTextBlock>
#include <QTextLayout>

#include "shell/editor/block_memory.h"
#include "shell/editor/program_clipboard.h"

namespace numalink {

QMimeData *ProgramEdit::createMimeDataFromSelection() const { return programSelection(); }
bool ProgramEdit::canInsertFromMimeData(const QMimeData *source) const { return canPasteProgram(source); }
void ProgramEdit::insertFromMimeData(const QMimeData *source) { pasteProgram(source); }

void ProgramEdit::reserveLeft(int pixels) { setViewportMargins(pixels, 0, 0, 0); }

QRect ProgramEdit::foldedDots(const QTextBlock &block) const {
    const QRectF line = blockBoundingGeometry(block).translated(contentOffset());
    const QTextLayout *layout = block.layout();
    if (layout->lineCount() == 0) return {};
    const QTextLine text = layout->lineAt(0);
    const int letter = fontMetrics().averageCharWidth(), height = qRound(line.height());
    const int left = qRound(line.left() + text.x() + text.naturalTextWidth()) + letter;
    return {left, qRound(line.top()) + height / 4, 3 * letter, height - 2 * (height / 4)};
}

// A frame with three dots, drawn: the program's face has no such character.
void ProgramEdit::paintEvent(QPaintEvent *event) {
    QPlainTextEdit::paintEvent(event);
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor color = palette().color(QPalette::Text);
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        if (!block.isVisible()) continue;
        if (blockBoundingGeometry(block).translated(contentOffset()).top() > event->rect().bottom()) break;
        if (!blockMemory(block).folded) continue;
        const QRectF frame = QRectF(foldedDots(block)).adjusted(0.5, 0.5, -0.5, -0.5);
        painter.setPen(color);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frame, 2, 2);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        for (const int place : {-1, 0, 1})
            painter.drawEllipse(frame.center() + QPointF(place * frame.width() / 4, 0), 1, 1);
    }
}

}  // namespace numalink
