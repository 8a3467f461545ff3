#include "shell/parts/status_bar.h"

#include <QLabel>
#include <QLayout>
#include <QMainWindow>
#include <QProgressBar>
#include <QStatusBar>

#include "shell/parts/color_contrast.h"
#include "shell/parts/cut_label.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int progressWidth = 150, progressHeight = 18, linkFieldWidth = 200;

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
