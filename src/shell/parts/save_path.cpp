#include "shell/parts/save_path.h"

#include <QFileDialog>
#include <QMainWindow>

#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

QString askSavePath(Text filter, const QString &ending, const QString &name) {
    QFileDialog dialog(mainWindow);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setNameFilter(textOf(filter) + QStringLiteral(" (*.%1)").arg(ending));
    dialog.setDefaultSuffix(ending);
    dialog.selectFile(QString(name).replace(QLatin1Char('/'), QLatin1Char('-')));
    return runDialog(dialog) == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

}  // namespace numalink
