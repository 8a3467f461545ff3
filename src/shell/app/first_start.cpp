#include "shell/app/first_start.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QRadioButton>
#include <QVBoxLayout>

#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "shell/commands/file_commands.h"
#include "shell/dialogs/port_choice.h"
#include "shell/dialogs/settings_dialog.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct BeginRow {
    const char *name;
    Text text;
    Text tip;
    void (*begin)();
};
constexpr BeginRow beginRows[] = {
    {"withSamples", Text::firstSamples, Text::tipFirstSamples, importSamples},
    {"withFiles", Text::firstFiles, Text::tipFirstFiles, openFiles},
    {"empty", Text::firstEmpty, Text::tipFirstEmpty, [] {}},
};

struct FirstStart {
    QRadioButton *begins[std::size(beginRows)] = {};
    QComboBox *family = nullptr;
    QComboBox *port = nullptr;
};

QGroupBox *beginBox(FirstStart &controls) {
    auto *box = new QGroupBox(textOf(Text::firstQuestion));
    auto *layout = new QVBoxLayout(box);
    for (std::size_t i = 0; i < std::size(beginRows); i++) {
        auto *choice = controls.begins[i] = new QRadioButton(textOf(beginRows[i].text));
        choice->setObjectName(QString::fromLatin1(beginRows[i].name));
        choice->setToolTip(textOf(beginRows[i].tip));
        layout->addWidget(choice);
    }
    controls.begins[0]->setChecked(true);
    return box;
}

QGroupBox *calculatorBox(FirstStart &controls) {
    auto *box = new QGroupBox(textOf(Text::firstCalculator));
    auto *form = new QFormLayout(box);
    controls.family = new QComboBox;
    controls.family->setObjectName(QStringLiteral("family"));
    controls.family->setToolTip(textOf(Text::tipSettingsType));
    controls.family->addItem(textOf(Text::firstNoCalculator), QString());
    for (const char *family : {"CFX", "ALGEBRA"})
        controls.family->addItem(QString::fromLatin1(family), QString::fromLatin1(family));
    controls.port = makePortChoice("", PortOf::link);
    controls.port->setObjectName(QStringLiteral("port"));
    controls.port->lineEdit()->setAccessibleName(textOf(Text::settingsPort));
    controls.port->setEnabled(false);
    form->addRow(textOf(Text::settingsType), controls.family);
    form->addRow(textOf(Text::settingsPort), controls.port);
    // Who has a calculator needs a port as well, and need not know which.
    const auto follow = [controls](int place) {
        controls.port->setEnabled(place > 0);
        const int automatic = controls.port->findData(toQt(setting::portAutomatic));
        controls.port->setCurrentIndex(place > 0 ? automatic : 0);
    };
    QObject::connect(controls.family, &QComboBox::currentIndexChanged, box, follow);
    return box;
}

void storeCalculator(const FirstStart &controls) {
    const std::string family = controls.family->currentData().toString().toStdString();
    if (family.empty()) return;
    settingsSetValue(setting::linkType, family);
    if (const std::string port = portChosen(*controls.port); !settingsSetValue(setting::comPort, port))
        tellUser(Text::settingRefused, {port});
    if (!settingsSave()) tellUser(Text::settingsNotSaved);
    linkSettingsChanged();
}

}  // namespace

void askFirstStart() {
    assertRole(ThreadRole::graphical);
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("firstStart"));
    dialog.setWindowTitle(textOf(Text::firstTitle));
    FirstStart controls;
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(beginBox(controls));
    layout->addWidget(calculatorBox(controls));
    auto *later = new QLabel(textOf(Text::firstLater));
    later->setWordWrap(true);
    layout->addWidget(later);
    layout->addWidget(dialogButtons(&dialog));
    controls.begins[0]->setFocus();
    if (runDialog(dialog) != QDialog::Accepted) return;
    storeCalculator(controls);
    for (std::size_t i = 0; i < std::size(beginRows); i++)
        if (controls.begins[i]->isChecked()) beginRows[i].begin();
}

}  // namespace numalink
