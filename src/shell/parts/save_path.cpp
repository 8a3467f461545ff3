#include "shell/parts/save_path.h"

#include <QFileDialog>
#include <QMainWindow>

#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

QString filterOf(const SaveForm &form) {
    return textOf(form.filter) + QStringLiteral(" (*.%1)").arg(QLatin1String(form.ending));
}

}  // namespace

QString askSavePath(const std::vector<SaveForm> &forms, const QString &name) {
    QFileDialog dialog(mainWindow);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    QStringList filters;
    for (const SaveForm &form : forms) filters << filterOf(form);
    dialog.setNameFilters(filters);
    dialog.setDefaultSuffix(QLatin1String(forms.front().ending));
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&](const QString &chosen) {
        for (const SaveForm &form : forms)
            if (filterOf(form) == chosen) dialog.setDefaultSuffix(QLatin1String(form.ending));
    });
    dialog.selectFile(QString(name).replace(QLatin1Char('/'), QLatin1Char('-')));
    return runDialog(dialog) == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

QString askSavePath(Text filter, const QString &ending, const QString &name) {
    const QByteArray latin = ending.toLatin1();
    return askSavePath({{filter, latin.constData()}}, name);
}

}  // namespace numalink
