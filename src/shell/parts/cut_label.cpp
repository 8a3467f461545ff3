#include "shell/parts/cut_label.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QStyle>

#include "shell/parts/event_hook.h"

namespace numalink {

namespace {

bool paintCut(QWidget *widget, QEvent *event) {
    auto *label = static_cast<QLabel *>(widget);
    if (event->type() != QEvent::Paint || label->textFormat() != Qt::PlainText) return false;
    QPainter painter(label);
    const QString cut = label->fontMetrics().elidedText(label->text(), Qt::ElideRight, label->width());
    label->style()->drawItemText(&painter, label->rect(), Qt::AlignLeft | Qt::AlignVCenter, label->palette(), true, cut,
                                 label->foregroundRole());
    return true;
}

}  // namespace

void cutToWidth(QLabel *label) { hookEvents(label, paintCut); }

void setCutWords(QLabel *label, const QString &words) {
    label->setText(words);
    label->setToolTip(Qt::mightBeRichText(words) ? words.toHtmlEscaped() : words);
}

}  // namespace numalink
