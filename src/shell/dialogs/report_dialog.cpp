#include "shell/dialogs/report_dialog.h"

#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLabel>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/dialogs/report_text.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "store/care/user_files.h"

namespace numalink {

namespace {

void save(QDialog &dialog, const QString &text) {
    const QString filter = textOf(Text::reportFilter) + QStringLiteral(" (*.txt)");
    QString path =
        QFileDialog::getSaveFileName(&dialog, textOf(Text::reportTitle), QStringLiteral("numalink-report.txt"), filter,
                                     nullptr, QFileDialog::DontConfirmOverwrite);
    if (path.isEmpty()) return;
    const std::string bytes = text.toStdString();
    writeUserFile(QFile::encodeName(path).toStdString(),
                  {reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size()}, false);
}

}  // namespace

void showReport() { showReportOf({}); }

void showReportOf(const std::vector<std::string> &before) {
    const QString text = reportText(before);
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("reportDialog"));
    dialog.setWindowTitle(textOf(Text::reportTitle));
    auto *words = new QLabel(textOf(Text::reportWords));
    words->setTextFormat(Qt::PlainText);
    words->setWordWrap(true);
    auto *shown = new QPlainTextEdit(text);
    shown->setReadOnly(true);
    shown->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    shown->setTabChangesFocus(true);
    shown->setLineWrapMode(QPlainTextEdit::NoWrap);
    shown->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    shown->setAccessibleName(textOf(Text::reportTitle));
    words->setBuddy(shown);
    shown->setToolTip(textOf(Text::tipReportText));
    QDialogButtonBox *buttons = closeButtons(&dialog);
    QPushButton *copy = buttons->addButton(textOf(Text::reportCopy), QDialogButtonBox::ActionRole);
    QPushButton *keep = buttons->addButton(textOf(Text::reportSave), QDialogButtonBox::ActionRole);
    QObject::connect(copy, &QPushButton::clicked, &dialog, [&text] { QGuiApplication::clipboard()->setText(text); });
    QObject::connect(keep, &QPushButton::clicked, &dialog, [&] { save(dialog, text); });
    copy->setToolTip(textOf(Text::tipReportCopy));
    keep->setToolTip(textOf(Text::tipReportSave));
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(words);
    layout->addWidget(shown, 1);
    layout->addWidget(buttons);
    dialog.resize(QSize(640, 440) * textScale());
    shown->setFocus();
    runDialog(dialog);
}

}  // namespace numalink
