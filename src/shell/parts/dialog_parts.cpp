#include "shell/parts/dialog_parts.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

#include "shell/parts/shell_texts.h"
#include "telling/tell_user.h"

namespace numalink {

QString boxTitle(bool warns) { return warns ? textOf(Text::warningTitle) : QString::fromLatin1(programTitle); }

QDialogButtonBox *dialogButtons(QDialog *dialog) {
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(textOf(Text::ok));
    buttons->button(QDialogButtonBox::Ok)->setDefault(true);
    buttons->button(QDialogButtonBox::Cancel)->setText(textOf(Text::cancel));
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

}  // namespace numalink
