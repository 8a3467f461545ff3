#include "shell/dialogs/settings_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>

#include "settings/settings_store.h"
#include "shell/dialogs/color_swatches.h"
#include "shell/editor/program_view.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/views/item_views.h"
#include "telling/language_table.h"
#include "telling/tell_user.h"

namespace numalink {

std::vector<std::string> (*listSerialPorts)() = [] { return std::vector<std::string>{"COM1", "COM2", "COM3", "COM4"}; };
void (*linkSettingsChanged)() = [] {};

namespace {

constexpr int valueLimit = 49;  // characters of a typed value

struct SwitchRow {
    const char *key;
    Text text;
};

constexpr SwitchRow linkSwitches[] = {{setting::removeColor, Text::settingsRemoveColor}};
constexpr SwitchRow emulatorSwitches[] = {{setting::haltOnError, Text::settingsHaltOnError},
                                          {setting::fullscreen, Text::settingsFullScreen},
                                          {setting::fillListsMatrices, Text::settingsFillLists},
                                          {setting::fullSpeed, Text::settingsFullSpeed}};
constexpr SwitchRow editorSwitches[] = {{setting::syntaxHighlighting, Text::settingsHighlighting},
                                        {setting::autoCorrect, Text::settingsAutoCorrect}};

struct SettingsControls {
    QComboBox *language = nullptr;
    QLabel *author = nullptr;
    QLabel *email = nullptr;
    QLabel *date = nullptr;
    QComboBox *port = nullptr;
    QComboBox *type = nullptr;
    std::vector<std::pair<const char *, QCheckBox *>> switches;
};

void addSwitches(QVBoxLayout *layout, std::span<const SwitchRow> rows, SettingsControls &controls) {
    for (const SwitchRow &row : rows) {
        auto *box = new QCheckBox(textOf(row.text));
        box->setChecked(settingsInt(row.key) > 0);
        box->setObjectName(QString::fromLatin1(row.key));
        layout->addWidget(box);
        controls.switches.emplace_back(row.key, box);
    }
}

QComboBox *freeChoice(const QStringList &offered, const char *key) {
    auto *box = new QComboBox;
    box->setEditable(true);
    box->addItems(offered);
    box->lineEdit()->setMaxLength(valueLimit);
    box->setCurrentText(toQt(settingsValue(key)));
    box->setObjectName(QString::fromLatin1(key));
    return box;
}

void showLanguage(const SettingsControls &controls) {
    const int index = controls.language->currentIndex();
    if (index < 0 || index >= languageCount()) return;
    const LanguageRecord &record = languageRecord(index);
    controls.author->setText(toQt(record.author));
    controls.email->setText(toQt(record.email));
    controls.date->setText(toQt(record.date));
}

QLabel *valueField() {
    auto *field = new QLabel;
    field->setTextFormat(Qt::PlainText);
    field->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return field;
}

QLayout *languagePart(SettingsControls &controls) {
    controls.language = new QComboBox;
    controls.language->setObjectName(QStringLiteral("languageBox"));
    for (int i = 0; i < languageCount(); i++) controls.language->addItem(toQt(languageRecord(i).name));
    controls.language->setCurrentIndex(languageCurrent());
    auto *form = new QFormLayout;
    form->addRow(textOf(Text::settingsLanguage), controls.language);
    form->addRow(textOf(Text::settingsAuthor), controls.author = valueField());
    form->addRow(textOf(Text::settingsEmail), controls.email = valueField());
    form->addRow(textOf(Text::settingsUpdated), controls.date = valueField());
    QObject::connect(controls.language, &QComboBox::currentIndexChanged, controls.language,
                     [controls] { showLanguage(controls); });
    showLanguage(controls);
    return form;
}

QGroupBox *linkPart(SettingsControls &controls) {
    QStringList ports;
    for (const std::string &port : listSerialPorts()) ports << toQt(port);
    controls.port = freeChoice(ports, setting::comPort);
    controls.type = freeChoice({QStringLiteral("ALGEBRA"), QStringLiteral("CFX")}, setting::linkType);
    auto *box = new QGroupBox(textOf(Text::settingsCommunication));
    auto *layout = new QVBoxLayout(box);
    auto *form = new QFormLayout;
    form->addRow(textOf(Text::settingsPort), controls.port);
    form->addRow(textOf(Text::settingsType), controls.type);
    layout->addLayout(form);
    addSwitches(layout, linkSwitches, controls);
    return box;
}

QGroupBox *emulatorPart(SettingsControls &controls) {
    auto *box = new QGroupBox(textOf(Text::settingsEmulator));
    addSwitches(new QVBoxLayout(box), emulatorSwitches, controls);
    return box;
}

QGroupBox *editorPart(SettingsControls &controls) {
    auto *box = new QGroupBox(textOf(Text::settingsEditor));
    auto *layout = new QVBoxLayout(box);
    addSwitches(layout, editorSwitches, controls);
    layout->addWidget(makeColorSwatches());
    return box;
}

void storeControls(const SettingsControls &controls) {
    const auto put = [](const char *key, const QString &text) {
        const std::string value = text.trimmed().toStdString();
        if (!settingsSetValue(key, value)) tellUser(Text::settingRefused, {value});
    };
    const QString language = controls.language->currentText();
    if (!language.isEmpty() && language.compare(toQt(settingsValue(setting::language)), Qt::CaseInsensitive) != 0) {
        tellFixed(Text::languageNextStart, {}, programTitle, BoxIcon::information);
    }
    if (!language.isEmpty()) put(setting::language, language);
    put(setting::comPort, controls.port->currentText());
    put(setting::linkType, controls.type->currentText());
    for (const auto &[key, box] : controls.switches) settingsSetInt(key, box->isChecked() ? 1 : 0);
    storeSwatches();
    if (!settingsSave()) tellUser(Text::settingsNotSaved);
}

// True for OK, with all stored.
bool settingsDialog() {
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("settingsDialog"));
    dialog.setWindowTitle(textOf(Text::settingsTitle));
    SettingsControls controls;
    auto *left = new QVBoxLayout;
    left->addLayout(languagePart(controls));
    left->addSpacing(8);
    left->addWidget(linkPart(controls));
    left->addWidget(emulatorPart(controls));
    left->addStretch();
    auto *parts = new QHBoxLayout;
    parts->addLayout(left);
    parts->addWidget(editorPart(controls), 1);
    auto *layout = new QVBoxLayout(&dialog);
    layout->addLayout(parts);
    layout->addWidget(dialogButtons(&dialog));
    const bool accepted = dialog.exec() == QDialog::Accepted;
    if (accepted) storeControls(controls);
    forgetSwatches();
    return accepted;
}

}  // namespace

int changeSettings() {
    const std::string portBefore = settingsValue(setting::comPort);
    const std::string typeBefore = settingsValue(setting::linkType);
    if (!settingsDialog()) return 1;
    if (settingsValue(setting::comPort) != portBefore || settingsValue(setting::linkType) != typeBefore)
        linkSettingsChanged();
    if (!reopenView()) recolourProgram();
    return 1;
}

}  // namespace numalink
