#include "shell/dialogs/port_choice.h"

#include <QComboBox>
#include <QLineEdit>

#include "settings/settings_store.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

QComboBox *makePortChoice(const std::string &value, PortOf use) {
    auto *box = new QComboBox;
    box->setEditable(true);
    box->setToolTip(textOf(Text::tipSettingsPort));
    box->setInsertPolicy(QComboBox::NoInsert);
    box->addItem(textOf(Text::portNoChoice), use == PortOf::link ? toQt(setting::portOff) : QString());
    if (use == PortOf::link) box->addItem(textOf(Text::portAutomatic), toQt(setting::portAutomatic));
    for (const OfferedPort &port : listSerialPorts()) box->addItem(port.words, toQt(port.value));
    box->lineEdit()->setMaxLength(static_cast<int>(settingsTextLimit));
    const int place = value.empty() ? 0 : box->findData(toQt(value));
    place >= 0 ? box->setCurrentIndex(place) : box->setEditText(toQt(value));
    return box;
}

std::string portChosen(const QComboBox &box) {
    const QString text = box.currentText();
    const int place = box.findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    return (place >= 0 ? box.itemData(place).toString() : text.trimmed()).toStdString();
}

}  // namespace numalink
