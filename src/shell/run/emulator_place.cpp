#include "shell/run/emulator_place.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QScreen>

#include "emulator/machine/keypad.h"
#include "settings/settings_store.h"
#include "shell/parts/client_layout.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

constexpr int frame = 2;                 // pixels around the key pad
constexpr QSize roomForBoth(1000, 680);  // of the main window: program, calculator and panes
constexpr QSize firstSize(2 * keypadWidth, 2 * keypadHeight);

struct EmulatorPlace {
    QDockWidget *dock = nullptr;  // the main window's
};
EmulatorPlace state;

void makeDock() {
    state.dock = new QDockWidget(textOf(Text::calculatorPane), mainWindow);
    state.dock->setObjectName(QStringLiteral("calculatorDock"));
    state.dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    mainWindow->addDockWidget(Qt::RightDockWidgetArea, state.dock);
    state.dock->hide();
}

void makeRoom() {
    if (mainWindow->isMaximized() || mainWindow->isFullScreen()) return;
    const QSize room = mainWindow->screen()->availableSize();
    const QSize wanted = mainWindow->size().expandedTo(roomForBoth).boundedTo(room);
    if (wanted == mainWindow->size()) return;
    mainWindow->resize(wanted);
}

}  // namespace

bool besideProgram() { return settingsInt(setting::besideProgram) != 0; }

void rememberBeside(bool beside) {
    settingsSetInt(setting::besideProgram, beside ? 1 : 0);
    settingsSave();
}

QDockWidget *calculatorDock() { return state.dock; }

void placeEmulator() {
    const bool beside = besideProgram();
    const bool isBeside = emulatorWindow->parentWidget() != clientArea;
    if (beside == isBeside) return;
    const bool wasHidden = emulatorWindow->isHidden();
    if (beside) {
        if (state.dock == nullptr) makeDock();
        emulatorWindow->setMinimumSize(keypadWidth + frame, keypadHeight + frame);
        state.dock->setWidget(emulatorWindow);
        emulatorWindow->setVisible(!wasHidden);
        state.dock->setVisible(!wasHidden);
    } else {
        state.dock->setWidget(nullptr);
        emulatorWindow->setMinimumSize(0, 0);
        emulatorWindow->setParent(clientArea);
        applyLayout();
        state.dock->hide();
        emulatorWindow->setVisible(!wasHidden);
        if (!wasHidden) emulatorWindow->raise();
    }
}

void showEmulatorPlace() {
    placeEmulator();
    emulatorWindow->show();
    if (!besideProgram()) return emulatorWindow->raise();
    const bool first = !state.dock->isVisible();
    if (first) makeRoom();
    state.dock->show();
    if (first && !state.dock->isFloating())
        mainWindow->resizeDocks({state.dock}, {firstSize.width() + frame}, Qt::Horizontal);
}

void hideEmulatorPlace() {
    emulatorWindow->hide();
    if (state.dock != nullptr) state.dock->hide();
}

void forgetEmulatorPlace() { state = {}; }

}  // namespace numalink
