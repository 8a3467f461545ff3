#include "shell/dialogs/link_dialogs.h"

#include <QApplication>
#include <QButtonGroup>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "shell/dialogs/worker_dialogs.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int slotCount = 6;
constexpr int yesResult = 1, noResult = 2;  // 0, a closed dialog, is Cancel

QPushButton *addAnswer(QDialog *dialog, QDialogButtonBox *buttons, Text text, Text tip, int result) {
    QPushButton *button = buttons->addButton(textOf(text), QDialogButtonBox::ActionRole);
    button->setToolTip(textOf(tip));
    QObject::connect(button, &QPushButton::clicked, dialog, [dialog, result] { dialog->done(result); });
    return button;
}

QDialog *existsDialog(const std::string &question) {
    auto *dialog = new QDialog(mainWindow);
    dialog->setObjectName(QStringLiteral("existsDialog"));
    dialog->setWindowTitle(boxTitle(false));
    auto *label = new QLabel(toQt(question));
    label->setTextFormat(Qt::PlainText);
    auto *buttons = new QDialogButtonBox;
    addAnswer(dialog, buttons, Text::yes, Text::tipExistsYes, yesResult);
    QPushButton *no = addAnswer(dialog, buttons, Text::no, Text::tipExistsNo, noResult);
    addAnswer(dialog, buttons, Text::cancel, Text::tipExistsCancel, 0);
    addHelp(dialog, buttons);
    auto *layout = new QVBoxLayout(dialog);
    layout->addWidget(label);
    layout->addWidget(buttons);
    no->setDefault(true);  // what is on the calculator stays unless the user says so
    no->setFocus();        // a focused button takes Enter ahead of the default one
    return dialog;
}

// Its result is the slot.
QDialog *slotDialog(const std::string &pictureName, int preset) {
    auto *dialog = new QDialog(mainWindow);
    dialog->setObjectName(QStringLiteral("slotDialog"));
    dialog->setWindowTitle(textOf(Text::slotTitle));
    auto *label = new QLabel(textOf(Text::slotQuestion, {pictureName}));
    label->setTextFormat(Qt::PlainText);
    auto *slotButtons = new QButtonGroup(dialog);
    auto *row = new QHBoxLayout;
    for (int slot = 1; slot <= slotCount; slot++) {
        auto *choice = new QRadioButton(QStringLiteral("&%1").arg(slot));
        choice->setChecked(slot == (preset >= 1 && preset <= slotCount ? preset : 1));
        choice->setToolTip(textOf(Text::tipSlot));
        slotButtons->addButton(choice, slot);
        row->addWidget(choice);
    }
    QDialogButtonBox *buttons = dialogButtons(dialog);
    QObject::disconnect(buttons, &QDialogButtonBox::accepted, dialog, nullptr);  // the slot is the answer
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog,
                     [dialog, slotButtons] { dialog->done(slotButtons->checkedId()); });
    auto *layout = new QVBoxLayout(dialog);
    layout->addWidget(label);
    layout->addLayout(row);
    layout->addWidget(buttons);
    return dialog;
}

}  // namespace

Answer askItemExists(const std::string &question) {
    switch (askByDialog([question] { return existsDialog(question); })) {
        case yesResult:
            return Answer::yes;
        case noResult:
            return Answer::no;
        default:
            return Answer::cancel;
    }
}

int askPictureSlot(const std::string &pictureName, int preset) {
    return askByDialog([pictureName, preset] { return slotDialog(pictureName, preset); });
}

}  // namespace numalink
