#include "shell/library/signed_text.h"

#include <QPainter>

#include "shell/parts/event_hook.h"

namespace numalink {

namespace {

bool paintSigns(QWidget *column, QEvent *event) {
    if (event->type() != QEvent::Paint) return false;
    const auto *text = static_cast<const QPlainTextEdit *>(column->parentWidget());
    QPainter painter(column);
    painter.setFont(text->font());
    painter.setPen(text->palette().color(QPalette::Text));
    for (QTextBlock block = text->cursorForPosition(QPoint(0, 0)).block(); block.isValid(); block = block.next()) {
        const QRect row = text->cursorRect(QTextCursor(block));
        if (row.top() > column->height()) break;
        painter.drawText(QRect(0, row.top(), column->width(), row.height()), Qt::AlignCenter,
                         SignedText::signOf(block));
    }
    return true;
}

}  // namespace

SignedText::SignedText() : column(new QWidget(this)) {
    setReadOnly(true);
    hookEvents(column, paintSigns);
    QObject::connect(this, &QPlainTextEdit::updateRequest, column, [this] { column->update(); });
    layOutColumn();
}

QString SignedText::signOf(const QTextBlock &block) {
    return block.userState() > 0 ? QString(QChar(static_cast<char16_t>(block.userState()))) : QString();
}

void SignedText::resizeEvent(QResizeEvent *event) {
    QPlainTextEdit::resizeEvent(event);
    layOutColumn();
}

void SignedText::changeEvent(QEvent *event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) layOutColumn();
}

void SignedText::layOutColumn() {
    const int width = 2 * fontMetrics().horizontalAdvance(QLatin1Char('+'));
    setViewportMargins(width, 0, 0, 0);
    const QRect room = contentsRect();
    column->setGeometry(room.left(), room.top(), width, room.height());
}

}  // namespace numalink
