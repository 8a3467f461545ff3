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

struct DebugWindow {
    QPointer<QWidget> dialog;
    QPointer<QLabel> counts;
};
DebugWindow state;

}  // namespace

void showDebugWindow() {
    if (state.dialog == nullptr) {
        state.dialog = new QWidget(mainWindow, Qt::Tool);
        state.dialog->setAttribute(Qt::WA_ShowWithoutActivating);
        state.dialog->setWindowTitle(QStringLiteral("Emulator - Debug"));
        auto *layout = new QVBoxLayout(state.dialog);
        layout->addWidget(new QLabel(QStringLiteral("Instruction :")));
        state.counts = new QLabel;
        state.counts->setFont(programFont());
        layout->addWidget(state.counts);
    }
    updateDebugWindow();
    state.dialog->show();
}

void hideDebugWindow() {
    if (state.dialog != nullptr) state.dialog->hide();
}

void updateDebugWindow() {
    if (state.counts == nullptr) return;
    const DebugCounts now = runDebugCounts();
    state.counts->setText(QStringLiteral("System:%1, Temp:%2").arg(now.ofVariables).arg(now.temporary));
}

void forgetDebugWindow() {
    delete state.dialog;
    state = {};
}

}  // namespace numalink
