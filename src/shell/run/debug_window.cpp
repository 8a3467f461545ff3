#include "shell/run/debug_window.h"

#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QVBoxLayout>

#include "emulator/run/runner.h"
#include "shell/parts/fonts.h"
#include "shell/parts/main_widgets.h"

namespace numalink {

namespace {

QPointer<QWidget> debugDialog;
QPointer<QLabel> counts;

}  // namespace

void showDebugWindow() {
    if (debugDialog == nullptr) {
        debugDialog = new QWidget(mainWindow, Qt::Tool);
        debugDialog->setAttribute(Qt::WA_ShowWithoutActivating);
        debugDialog->setWindowTitle(QStringLiteral("Emulator - Debug"));
        auto *layout = new QVBoxLayout(debugDialog);
        layout->addWidget(new QLabel(QStringLiteral("Instruction :")));
        counts = new QLabel;
        counts->setFont(programFont());
        layout->addWidget(counts);
    }
    updateDebugWindow();
    debugDialog->show();
}

void hideDebugWindow() {
    if (debugDialog != nullptr) debugDialog->hide();
}

void updateDebugWindow() {
    if (counts == nullptr) return;
    const DebugCounts now = runDebugCounts();
    counts->setText(QStringLiteral("System:%1, Temp:%2").arg(now.ofVariables).arg(now.temporary));
}

void forgetDebugWindow() { delete debugDialog; }

}  // namespace numalink
