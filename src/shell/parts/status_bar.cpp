#include "shell/parts/status_bar.h"

#include <QLabel>
#include <QLayout>
#include <QMainWindow>
#include <QProgressBar>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <QTextDocument>
#include <algorithm>

#include "shell/parts/color_contrast.h"
#include "shell/parts/cut_label.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int progressWidth = 150, progressHeight = 18, linkFieldWidth = 200;
constexpr int tipGap = 12;  // pixels between the link's words and a tip

QLabel *tipField = nullptr;  // what the command under the pointer does, in the place of the item field

QLabel *makeField(const char *name, int narrowest) {
    auto *field = new QLabel;
    field->setObjectName(QString::fromLatin1(name));
    field->setTextFormat(Qt::PlainText);
    field->setMinimumWidth(narrowest);
    cutToWidth(field);
    return field;
}

// Words that lead to the settings.
void showAsLink(QLabel *field, const QString &text) {
    field->setTextFormat(Qt::RichText);
    field->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    const QColor color = readableOn(field->palette().color(QPalette::Window), field->palette().color(QPalette::Link));
    field->setText(
        QStringLiteral("<a href=\"settings\" style=\"color: %1\">%2</a>").arg(color.name(), text.toHtmlEscaped()));
}

void showPlain(QLabel *field, const QString &text) {
    field->setTextFormat(Qt::PlainText);
    field->setTextInteractionFlags(Qt::NoTextInteraction);
    field->setText(text);
}

// A label's own size hint counts its least width, too. 0 for no words; else with a gap behind them.
int wordsWidth(const QLabel &field) {
    QTextDocument words;
    words.setDefaultFont(field.font());
    words.setDocumentMargin(0);
    field.textFormat() == Qt::PlainText ? words.setPlainText(field.text()) : words.setHtml(field.text());
    return field.text().isEmpty() ? 0 : static_cast<int>(words.idealWidth()) + grown(tipGap);
}

// The link's words stay beside a tip, which takes what room they leave.
void showTip(const QString &tip) {
    const bool isShown = !tip.isEmpty();
    const int widest = grown(linkFieldWidth);
    linkField->setMinimumWidth(isShown ? std::min(widest, wordsWidth(*linkField)) : widest);
    linkField->setMaximumWidth(isShown ? std::max(1, wordsWidth(*linkField)) : QWIDGETSIZE_MAX);
    tipField->setText(tip);
    itemField->setVisible(!isShown);
    tipField->setVisible(isShown);
}

bool tipEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::StatusTip) return false;
    showTip(static_cast<QStatusTipEvent *>(event)->tip());
    return true;
}

}  // namespace

void makeStatusBar() {
    statusBar = mainWindow->statusBar();
    progressBar = new QProgressBar;
    progressBar->setFixedSize(QSize(progressWidth, progressHeight) * textScale());
    progressBar->setTextVisible(false);
    progressBar->setAccessibleName(textOf(Text::progressName));
    linkField = makeField("linkField", grown(linkFieldWidth));
    linkField->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    itemField = makeField("itemField", 1);
    statusBar->addWidget(progressBar);
    statusBar->addWidget(linkField, 1);
    statusBar->addWidget(itemField);
    tipField = makeField("tipField", 1);
    tipField->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    statusBar->addWidget(tipField, 1);
    tipField->hide();
    progressBar->hide();
    hookEvents(mainWindow, tipEvent);
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
