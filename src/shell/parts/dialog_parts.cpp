#include "shell/parts/dialog_parts.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QShortcut>

#include "shell/parts/shell_texts.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

bool boxesSilent = false;

struct HelpRow {
    const char *dialog;  // its object name
    const char *page;
};
constexpr HelpRow helpRows[] = {
    {"firstStart", "first-steps"},    {"settingsDialog", "settings"},   {"importDialog", "files"},
    {"exportDialog", "files"},        {"bitmapDialog", "files"},        {"findDialog", "editing"},
    {"passwordDialog", "editing"},    {"slotDialog", "communication"},  {"existsDialog", "communication"},
    {"queueWindow", "communication"}, {"referenceWindow", "text-form"}, {"moveDialog", "library"},
    {"reportDialog", "trouble"},      {"searchWindow", "finding"},      {"compareDialog", "finding"},
    {"versionsDialog", "finding"},    {"duplicatesDialog", "finding"},  {"arrivalsDialog", "files"},
    {"keysDialog", "keys"},           {"renameDialog", "editing"},      {"momentsDialog", "running"},
};

QString pageOf(const QDialog *dialog) {
    for (const HelpRow &row : helpRows)
        if (dialog->objectName() == QLatin1String(row.dialog)) return QString::fromLatin1(row.page);
    return {};
}

void nameButton(QDialogButtonBox *buttons, QDialogButtonBox::StandardButton which, Text text, Text tip) {
    QPushButton *button = buttons->button(which);
    button->setText(textOf(text));
    button->setToolTip(textOf(tip));
}

}  // namespace

void silenceBoxes(bool on) { boxesSilent = on; }
bool boxesSilenced() { return boxesSilent; }

QString boxTitle(bool warns) { return warns ? textOf(Text::warningTitle) : QString::fromLatin1(programTitle); }

QDialogButtonBox *dialogButtons(QDialog *dialog) {
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    nameButton(buttons, QDialogButtonBox::Ok, Text::ok, Text::tipOk);
    nameButton(buttons, QDialogButtonBox::Cancel, Text::cancel, Text::tipCancel);
    buttons->button(QDialogButtonBox::Ok)->setDefault(true);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    addHelp(dialog, buttons);
    return buttons;
}

QDialogButtonBox *closeButtons(QDialog *dialog) {
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    nameButton(buttons, QDialogButtonBox::Close, Text::close, Text::tipClose);
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    addHelp(dialog, buttons);
    return buttons;
}

void addHelp(QDialog *dialog, QDialogButtonBox *buttons) {
    const auto open = [dialog] { openManual(pageOf(dialog)); };
    buttons->addButton(QDialogButtonBox::Help);
    nameButton(buttons, QDialogButtonBox::Help, Text::helpButton, Text::tipHelpButton);
    buttons->button(QDialogButtonBox::Help)->setAutoDefault(false);
    QObject::connect(buttons, &QDialogButtonBox::helpRequested, dialog, open);
    QObject::connect(new QShortcut(QKeySequence::HelpContents, dialog), &QShortcut::activated, dialog, open);
}

}  // namespace numalink
