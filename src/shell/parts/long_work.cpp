#include "shell/parts/long_work.h"

#include <QMainWindow>

#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int moment = 400, lookMilliseconds = 40;

}  // namespace

LongWork::LongWork(Text words, std::size_t total)
    : dialog(new QProgressDialog(textOf(words), textOf(Text::cancel), 0, static_cast<int>(total), mainWindow)) {
    dialog->setObjectName(QStringLiteral("longWork"));
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setMinimumDuration(moment);
    dialog->setAutoReset(false);
    sinceLook.start();
}

LongWork::~LongWork() {
    const bool wasShown = !dialog.isNull() && dialog->isVisible();
    delete dialog.data();
    if (wasShown) dialogClosed();
}

bool LongWork::step(std::size_t done) {
    if (!dialog.isNull() && sinceLook.elapsed() >= lookMilliseconds) {
        sinceLook.start();
        dialog->setValue(static_cast<int>(done));
    }
    return !dialog.isNull() && !dialog->wasCanceled();
}

}  // namespace numalink
