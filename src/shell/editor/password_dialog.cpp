#include "shell/editor/password_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QVBoxLayout>

#include "calculator/program_info.h"
#include "shell/editor/program_status.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

bool askPassword(QString &password) {
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("passwordDialog"));
    dialog.setWindowTitle(textOf(Text::toolPassword));
    auto *typed = new QLineEdit(password);
    typed->setEchoMode(QLineEdit::Password);
    typed->setMaxLength(static_cast<int>(programNameLimit));
    typed->setAccessibleName(textOf(Text::toolPassword));
    typed->setToolTip(textOf(Text::tipPasswordText));
    typed->selectAll();
    auto *label = new QLabel(textOf(Text::toolPassword));
    label->setBuddy(typed);
    auto *refused = new QLabel(textOf(Text::passwordTooLong));
    refused->setObjectName(QStringLiteral("passwordRefused"));
    QSizePolicy keepsRoom = refused->sizePolicy();
    keepsRoom.setRetainSizeWhenHidden(true);
    refused->setSizePolicy(keepsRoom);
    refused->hide();
    QObject::connect(typed, &QLineEdit::inputRejected, refused, &QWidget::show);
    QObject::connect(typed, &QLineEdit::textChanged, refused, [refused](const QString &text) {
        if (text.size() < static_cast<qsizetype>(programNameLimit)) refused->hide();
    });
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(label);
    layout->addWidget(typed);
    layout->addWidget(refused);
    layout->addWidget(dialogButtons(&dialog));
    dialog.resize(dialog.sizeHint().expandedTo(QSize(grown(240), 0)));
    if (runDialog(dialog) != QDialog::Accepted) return false;
    password = typed->text();
    return true;
}

}  // namespace

void changePassword() {
    StoredItem item;
    const ItemId id = selectedItemId();
    if (id == noItem || !storeReadItem(id, item) || item.kind != kind::program) return;
    std::optional<ProgramInfo> info = decodeProgramInfo(item.head);
    if (!info) return;
    QString password = nameToQt(info->password);
    if (!askPassword(password)) return;
    int missing = 0;
    const std::string codes = calculatorFromUtf8(password.toStdString(), &missing);
    if (missing > 0) {
        tellUser(Text::nameHasForeignCharacter);
        return;
    }
    if (codes.size() > programNameLimit) {
        tellUser(Text::passwordTooLong);
        return;
    }
    info->password = codes;
    if (storeRewriteHead(id, encodeProgramInfo(*info))) programToStatus(id);
}

}  // namespace numalink
