#include "shell/dialogs/settings_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>
#include <array>

#include "settings/settings_store.h"
#include "shell/dialogs/color_swatches.h"
#include "shell/dialogs/port_choice.h"
#include "shell/editor/program_status.h"
#include "shell/editor/program_view.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"
#include "shell/views/item_views.h"
#include "telling/language_table.h"
#include "telling/tell_user.h"

namespace numalink {

void (*linkSettingsChanged)() = [] {};

namespace {

constexpr int valueLimit = 49;  // characters of a typed value

struct SwitchRow {
    const char *key;
    Text text;
    Text tip;
};

constexpr SwitchRow linkSwitches[] = {{setting::removeColor, Text::settingsRemoveColor, Text::tipRemoveColor}};
constexpr SwitchRow emulatorSwitches[] = {
    {setting::haltOnError, Text::settingsHaltOnError, Text::tipHaltOnError},
    {setting::fullscreen, Text::settingsFullScreen, Text::tipFullScreen},
    {setting::fillListsMatrices, Text::settingsFillLists, Text::tipFillLists},
    {setting::fullSpeed, Text::settingsFullSpeed, Text::tipFullSpeed},
    {setting::calculatorModes, Text::settingsCalculatorModes, Text::tipCalculatorModes},
    {setting::keepMoments, Text::settingsKeepMoments, Text::tipKeepMoments}};
constexpr SwitchRow editorSwitches[] = {
    {setting::syntaxHighlighting, Text::settingsHighlighting, Text::tipHighlighting},
    {setting::autoCorrect, Text::settingsAutoCorrect, Text::tipAutoCorrect}};

struct SettingsControls {
    QComboBox *language = nullptr;
    QLabel *author = nullptr;
    QLabel *email = nullptr;
    QLabel *date = nullptr;
    QComboBox *port = nullptr;
    QComboBox *type = nullptr;
    QComboBox *farEnd = nullptr;
    std::vector<std::pair<const char *, QSpinBox *>> memories;
    std::vector<std::pair<const char *, QCheckBox *>> switches;
};

void addSwitches(QVBoxLayout *layout, std::span<const SwitchRow> rows, SettingsControls &controls) {
    for (const SwitchRow &row : rows) {
        auto *box = new QCheckBox(textOf(row.text));
        box->setChecked(settingsInt(row.key) > 0);
        box->setObjectName(QString::fromLatin1(row.key));
        box->setToolTip(textOf(row.tip));
        layout->addWidget(box);
        controls.switches.emplace_back(row.key, box);
    }
}

QComboBox *portChoice(const char *key, PortOf use) {
    QComboBox *box = makePortChoice(settingsValue(key), use);
    box->setObjectName(QString::fromLatin1(key));
    return box;
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

// The label belongs to the box alone: the line to type in, which has the focus for a screen reader, is named by itself.
void addFreeChoice(QFormLayout *form, Text label, QComboBox *box) {
    form->addRow(textOf(label), box);
    box->lineEdit()->setAccessibleName(textOf(label));
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

// What the settings name, or the language in use where they name none.
int languageChosen() {
    const QString stored = toQt(settingsValue(setting::language));
    for (int i = 0; i < languageCount(); i++)
        if (toQt(languageRecord(i).name).compare(stored, Qt::CaseInsensitive) == 0) return i;
    return languageCurrent();
}

QWidget *languagePage(SettingsControls &controls) {
    controls.language = new QComboBox;
    controls.language->setObjectName(QStringLiteral("languageBox"));
    controls.language->setToolTip(textOf(Text::tipSettingsLanguage));
    for (int i = 0; i < languageCount(); i++) controls.language->addItem(toQt(languageRecord(i).name));
    controls.language->setCurrentIndex(languageChosen());
    auto *page = new QWidget;
    auto *form = new QFormLayout(page);
    form->addRow(textOf(Text::settingsLanguage), controls.language);
    form->addRow(textOf(Text::settingsAuthor), controls.author = valueField());
    form->addRow(textOf(Text::settingsEmail), controls.email = valueField());
    form->addRow(textOf(Text::settingsUpdated), controls.date = valueField());
    QObject::connect(controls.language, &QComboBox::currentIndexChanged, controls.language,
                     [controls] { showLanguage(controls); });
    showLanguage(controls);
    return page;
}

void addMemory(QFormLayout *form, Text label, const char *key, SettingsControls &controls) {
    auto *box = new QSpinBox;
    box->setRange(leastMemory, mostMemory);
    box->setSingleStep(leastMemory);
    box->setGroupSeparatorShown(true);
    box->setValue(memoryOfCalculator(key));
    box->setObjectName(QString::fromLatin1(key));
    box->setToolTip(textOf(Text::tipMemory));
    form->addRow(textOf(label), box);
    controls.memories.emplace_back(key, box);
}

QWidget *linkPage(SettingsControls &controls) {
    controls.port = portChoice(setting::comPort, PortOf::link);
    controls.type = freeChoice({QStringLiteral("ALGEBRA"), QStringLiteral("CFX")}, setting::linkType);
    controls.type->setToolTip(textOf(Text::tipSettingsType));
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    auto *form = new QFormLayout;
    addFreeChoice(form, Text::settingsPort, controls.port);
    addFreeChoice(form, Text::settingsType, controls.type);
    addMemory(form, Text::settingsMemoryCfx, setting::memoryCfx, controls);
    addMemory(form, Text::settingsMemoryAlgebra, setting::memoryAlgebra, controls);
    layout->addLayout(form);
    addSwitches(layout, linkSwitches, controls);
    layout->addStretch();
    return page;
}

QWidget *emulatorPage(SettingsControls &controls) {
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    addSwitches(layout, emulatorSwitches, controls);
    controls.farEnd = portChoice(setting::farEndPort, PortOf::programs);
    controls.farEnd->setToolTip(textOf(Text::tipFarEnd));
    auto *form = new QFormLayout;
    addFreeChoice(form, Text::settingsFarEnd, controls.farEnd);
    layout->addLayout(form);
    layout->addStretch();
    return page;
}

QWidget *editorPage(SettingsControls &controls) {
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    addSwitches(layout, editorSwitches, controls);
    layout->addWidget(makeColorSwatches(), 1);
    for (const auto &[key, box] : controls.switches) {
        if (std::string_view(key) != setting::syntaxHighlighting) continue;
        QObject::connect(box, &QCheckBox::clicked, box, [](bool on) {
            if (on) offerSchemeForBlack();
        });
    }
    return page;
}

void storeControls(const SettingsControls &controls) {
    const auto put = [](const char *key, const std::string &value) {
        if (!settingsSetValue(key, value)) tellUser(Text::settingRefused, {value});
    };
    const QString language = controls.language->currentText();
    if (controls.language->currentIndex() != languageChosen())
        tellFixed(Text::languageNextStart, {}, programTitle, BoxIcon::information);
    if (!language.isEmpty()) put(setting::language, language.toStdString());
    put(setting::comPort, portChosen(*controls.port));
    put(setting::linkType, controls.type->currentText().trimmed().toStdString());
    put(setting::farEndPort, portChosen(*controls.farEnd));
    for (const auto &[key, box] : controls.switches) settingsSetInt(key, box->isChecked() ? 1 : 0);
    for (const auto &[key, box] : controls.memories) settingsSetInt(key, box->value());
    storeSwatches();
    if (!settingsSave()) tellUser(Text::settingsNotSaved);
}

// True for OK, with all stored.
bool settingsDialog(bool portFirst) {
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("settingsDialog"));
    dialog.setWindowTitle(textOf(Text::settingsTitle));
    SettingsControls controls;
    auto *pages = new QTabWidget;  // one above the other they would not fit a small screen
    pages->addTab(languagePage(controls), textOf(Text::settingsLanguagePage));
    const int portPage = pages->addTab(linkPage(controls), textOf(Text::settingsCommunication));
    pages->addTab(emulatorPage(controls), textOf(Text::settingsEmulator));
    pages->addTab(editorPage(controls), textOf(Text::settingsEditor));
    if (portFirst) pages->setCurrentIndex(portPage);
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(pages);
    layout->addWidget(dialogButtons(&dialog));
    const bool accepted = runDialog(dialog) == QDialog::Accepted;
    if (accepted) storeControls(controls);
    forgetSwatches();
    return accepted;
}

void change(bool portFirst) {
    const std::string portBefore = settingsValue(setting::comPort);
    const std::string typeBefore = settingsValue(setting::linkType);
    if (!settingsDialog(portFirst)) return;
    if (settingsValue(setting::comPort) != portBefore || settingsValue(setting::linkType) != typeBefore)
        linkSettingsChanged();
    if (!reopenView()) recolorProgram();
}

}  // namespace

void changeSettings() { change(false); }
void choosePort() { change(true); }

}  // namespace numalink
