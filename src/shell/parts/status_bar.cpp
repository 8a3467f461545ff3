#include "shell/parts/status_bar.h"

#include <QLabel>
#include <QLayout>
#include <QMainWindow>
#include <QPainter>
#include <QProgressBar>
#include <QStatusBar>
#include <QStyle>

#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int progressWidth = 150, progressHeight = 18, linkFieldWidth = 200;

// The text itself stays whole, for screen readers and for a field that becomes wider.
bool paintCut(QWidget *widget, QEvent *event) {
    auto *field = static_cast<QLabel *>(widget);
    if (event->type() != QEvent::Paint || field->textFormat() != Qt::PlainText) return false;
    QPainter painter(field);
    const QString cut = field->fontMetrics().elidedText(field->text(), Qt::ElideRight, field->width());
    field->style()->drawItemText(&painter, field->rect(), Qt::AlignLeft | Qt::AlignVCenter, field->palette(), true, cut,
                                 field->foregroundRole());
    return true;
}

QLabel *makeField(const char *name, int narrowest) {
    auto *field = new QLabel;
    field->setObjectName(QString::fromLatin1(name));
    field->setTextFormat(Qt::PlainText);
    field->setMinimumWidth(narrowest);
    hookEvents(field, paintCut);
    return field;
}

// Words that lead to the settings.
void showAsLink(QLabel *field, const QString &text) {
    field->setTextFormat(Qt::RichText);
    field->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    field->setText(QStringLiteral("<a href=\"settings\">%1</a>").arg(text.toHtmlEscaped()));
}

void showPlain(QLabel *field, const QString &text) {
    field->setTextFormat(Qt::PlainText);
    field->setTextInteractionFlags(Qt::NoTextInteraction);
    field->setText(text);
}

}  // namespace

void makeStatusBar() {
    statusBar = mainWindow->statusBar();
    progressBar = new QProgressBar;
    progressBar->setFixedSize(progressWidth, progressHeight);
    progressBar->setTextVisible(false);
    progressBar->setAccessibleName(textOf(Text::progressName));
    linkField = makeField("linkField", linkFieldWidth);
    linkField->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    itemField = makeField("itemField", 1);
    statusBar->addWidget(progressBar);
    statusBar->addWidget(linkField, 1);
    statusBar->addWidget(itemField);
    progressBar->hide();
}

void showStatus(QLabel *field, const QString &text, bool leadsToSettings) {
    if (field == nullptr) return;
    leadsToSettings ? showAsLink(field, text) : showPlain(field, text);
    field->setToolTip(Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text);
}

void showProgress(int maximum) {
    if (progressBar == nullptr) return;
    progressBar->setVisible(maximum > 0);
    progressBar->setRange(0, maximum > 0 ? maximum : 1);
    progressBar->setValue(0);
    statusBar->layout()->activate();  // what runs now may keep this thread from its events
}

void moveProgress(int position) {
    if (progressBar == nullptr) return;
    progressBar->setValue(position);
    progressBar->repaint();
}

}  // namespace numalink
