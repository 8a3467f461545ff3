#include "shell/run/emulator_place.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QScreen>
#include <algorithm>

#include "emulator/machine/keypad.h"
#include "settings/settings_store.h"
#include "shell/parts/client_layout.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/pane_sizes.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/mode_line.h"

namespace numalink {

namespace {

constexpr int frame = 2;  // pixels around the key pad
constexpr QSize usualFrame(4, 32);
constexpr QSize roomForBoth(1040, 760);  // of the main window: program, calculator and panes
constexpr QSize firstSize(2 * keypadWidth, 2 * keypadHeight);

struct EmulatorPlace {
    QDockWidget *dock = nullptr;  // the main window's
};
EmulatorPlace state;

}  // namespace

void makeCalculatorDock() {
    state.dock = new QDockWidget(textOf(Text::calculatorPane), mainWindow);
    state.dock->setObjectName(QStringLiteral("calculatorDock"));
    state.dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    mainWindow->addDockWidget(Qt::RightDockWidgetArea, state.dock);
    tearOffAgain(state.dock);
    state.dock->hide();
}

bool besideProgram() { return settingsInt(setting::besideProgram) != 0; }

void rememberBeside(bool beside) {
    settingsSetInt(setting::besideProgram, beside ? 1 : 0);
    settingsSave();
}

void makeRoomBeside() {
    if (mainWindow->isMaximized() || mainWindow->isFullScreen()) return;
    const QRect screen = mainWindow->screen()->availableGeometry();
    // A window that hasn't been on the screen has no frame yet.
    const QSize frameSize = (mainWindow->frameGeometry().size() - mainWindow->size()).expandedTo(usualFrame);
    const QSize wanted = mainWindow->size().expandedTo(roomForBoth).boundedTo(screen.size() - frameSize);
    if (wanted == mainWindow->size()) return;
    QRect place(mainWindow->pos(), wanted + frameSize);
    place.moveLeft(
        std::clamp(place.left(), screen.left(), std::max(screen.left(), screen.right() - place.width() + 1)));
    place.moveTop(std::clamp(place.top(), screen.top(), std::max(screen.top(), screen.bottom() - place.height() + 1)));
    mainWindow->resize(wanted);
    mainWindow->move(place.topLeft());
}

void placeEmulator() {
    const bool beside = besideProgram();
    const bool isBeside = emulatorWindow->parentWidget() != clientArea;
    if (beside == isBeside) return;
    const bool wasHidden = emulatorWindow->isHidden();
    if (beside) {
        state.dock->setWidget(emulatorWindow);
        fitEmulatorPlace();
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

void fitEmulatorPlace() {
    if (besideProgram()) emulatorWindow->setMinimumSize(keypadWidth + frame, keypadHeight + frame + modeLineHeight());
}

void showEmulatorPlace() {
    placeEmulator();
    emulatorWindow->show();
    if (!besideProgram()) return emulatorWindow->raise();
    const bool first = !state.dock->isVisible();
    if (first) makeRoomBeside();
    state.dock->show();
    if (!first || state.dock->isFloating()) return;
    const QSize known = paneSize(state.dock);
    mainWindow->resizeDocks({state.dock}, {known.isEmpty() ? firstSize.width() + frame : known.width()},
                            Qt::Horizontal);
    if (!known.isEmpty()) mainWindow->resizeDocks({state.dock}, {known.height()}, Qt::Vertical);
}

void hideEmulatorPlace() {
    if (state.dock != nullptr) notePaneSize(state.dock);
    emulatorWindow->hide();
    if (state.dock != nullptr) state.dock->hide();
}

void forgetEmulatorPlace() { state = {}; }

}  // namespace numalink
