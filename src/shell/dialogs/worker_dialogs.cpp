#include "shell/dialogs/worker_dialogs.h"

#include <QDialog>
#include <QPointer>
#include <map>
#include <memory>

#include "shell/parts/open_windows.h"
#include "telling/graphical_calls.h"

namespace numalink {

namespace {

std::map<GraphicalQuestion, QPointer<QDialog>> openDialogs;  // graphical thread only

void openFor(QDialog *dialog, GraphicalQuestion question) {
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    openDialogs[question] = dialog;
    QObject::connect(dialog, &QDialog::finished, dialog, [question](int result) {
        openDialogs.erase(question);
        graphicalAnswer(question, result);
        dialogClosed();
    });
    fitToScreen(*dialog);
    dialog->open();
}

void closeFor(GraphicalQuestion question) {
    const auto found = openDialogs.find(question);
    if (found == openDialogs.end()) return;
    if (const QPointer<QDialog> dialog = found->second) dialog->reject();
}

}  // namespace

int askByDialog(const std::function<QDialog *()> &make) {
    if (threadRole != ThreadRole::graphical) {
        return graphicalAsk([make](GraphicalQuestion question) { openFor(make(), question); }, closeFor).value_or(0);
    }
    const std::unique_ptr<QDialog> dialog(make());
    return runDialog(*dialog);
}

}  // namespace numalink
