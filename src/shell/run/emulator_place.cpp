#include "shell/run/emulator_place.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "emulator/machine/keypad.h"
#include "emulator/machine/machine.h"
#include "settings/settings_store.h"
#include "shell/parts/client_layout.h"
#include "shell/parts/event_hook.h"
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
    bool fitDue = false;
};
EmulatorPlace state;

QRect screenRoom() { return mainWindow->screen()->availableGeometry(); }

// A window that hasn't been on the screen has no frame yet.
QSize frameSize() { return (mainWindow->frameGeometry().size() - mainWindow->size()).expandedTo(usualFrame); }

// All of it stays on the screen.
void sizeMainWindow(const QSize &size) {
    const QRect screen = screenRoom();
    QRect place(mainWindow->pos(), size + frameSize());
    place.moveLeft(
        std::clamp(place.left(), screen.left(), std::max(screen.left(), screen.right() - place.width() + 1)));
    place.moveTop(std::clamp(place.top(), screen.top(), std::max(screen.top(), screen.bottom() - place.height() + 1)));
    mainWindow->resize(size);
    mainWindow->move(place.topLeft());
}

bool isSizedByUser() { return !mainWindow->isMaximized() && !mainWindow->isFullScreen(); }

// Qt makes a window as high as its parts need, even where no screen has the room.
void fitSoon() {
    state.fitDue = false;
    if (state.dock == nullptr || !state.dock->isVisible()) return;
    fitEmulatorPlace();
    const QSize most = screenRoom().size() - frameSize();
    if (isSizedByUser() && mainWindow->height() > most.height()) sizeMainWindow(mainWindow->size().boundedTo(most));
}

bool partsChanged(QWidget *, QEvent *event) {
    if (event->type() == QEvent::LayoutRequest && !std::exchange(state.fitDue, true))
        QTimer::singleShot(0, mainWindow, fitSoon);
    return false;
}

}  // namespace

void makeCalculatorDock() {
    state.dock = new QDockWidget(textOf(Text::calculatorPane), mainWindow);
    state.dock->setObjectName(QStringLiteral("calculatorDock"));
    state.dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    mainWindow->addDockWidget(Qt::RightDockWidgetArea, state.dock);
    tearOffAgain(state.dock);
    state.dock->hide();
    hookEvents(mainWindow, partsChanged);
}

bool besideProgram() { return settingsInt(setting::besideProgram) != 0; }

void rememberBeside(bool beside) {
    settingsSetInt(setting::besideProgram, beside ? 1 : 0);
    settingsSave();
}

void makeRoomBeside() {
    if (!isSizedByUser()) return;
    const QSize wanted = mainWindow->size().expandedTo(roomForBoth).boundedTo(screenRoom().size() - frameSize());
    if (wanted != mainWindow->size()) sizeMainWindow(wanted);
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

// The lower rows of the key pad give way where the screen is too low for all of them above the panes.
void fitEmulatorPlace() {
    if (!besideProgram()) return;
    const int around = frame + modeLineHeight();
    const int free = screenRoom().height() - frameSize().height() - mainWindow->minimumSizeHint().height();
    const int height =
        std::clamp(emulatorWindow->minimumHeight() + free, displayHeight + around, keypadHeight + around);
    emulatorWindow->setMinimumSize(keypadWidth + frame, height);
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
