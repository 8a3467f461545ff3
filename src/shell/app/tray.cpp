#include "shell/app/tray.h"

#include <QIcon>
#include <QMainWindow>
#include <QMenu>
#include <QPointer>
#include <QSystemTrayIcon>
#include <QTimer>
#include <utility>

#include "emulator/machine/machine.h"
#include "shell/commands/menus.h"
#include "shell/editor/symbols_window.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/debug_window.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct Tray {
    QSystemTrayIcon *icon = nullptr;
    QTimer *hostWatch = nullptr;  // runs while the window is hidden: nobody tells when the area goes
    bool hostMissed = false;
    QList<QPointer<QWidget>> hiddenAlong;  // windows over the main one, to come back with it
};
Tray state;

constexpr int hostWatchMilliseconds = 1000;

// A panel that starts again is away for a moment: the second miss in a row counts.
void watchHost() {
    const bool missed = !trayAvailable();
    if (missed && state.hostMissed) raiseMainWindow();
    state.hostMissed = missed;
}

void hideAlong() {
    for (QWidget *window : mainWindow->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (!window->isWindow()) continue;
        if (window->isVisible()) state.hiddenAlong.append(window);
        window->hide();
    }
}

void showHiddenAlong() {
    for (const QPointer<QWidget> &window : std::exchange(state.hiddenAlong, {}))
        if (window != nullptr) showUnminimised(window);
    // What they belong to may have gone meanwhile.
    if (!isTextKind(viewKind)) hideSymbols();
    if (!emulatorRunning) hideDebugWindow();
}

}  // namespace

bool trayAvailable() { return state.icon != nullptr && QSystemTrayIcon::isSystemTrayAvailable(); }

void hideToTray() {
    if (mainWindow->isHidden()) return;
    hideAlong();
    mainWindow->hide();
    state.hostMissed = false;
    state.hostWatch->start(hostWatchMilliseconds);
}

void raiseMainWindow() {
    if (state.hostWatch != nullptr) state.hostWatch->stop();
    mainWindow->setWindowState(mainWindow->windowState() & ~Qt::WindowMinimized);
    mainWindow->show();
    showHiddenAlong();
    mainWindow->raise();
    mainWindow->activateWindow();
    raiseOpenDialog();
}

void addTrayIcon() {
    state.icon = new QSystemTrayIcon(QIcon(QStringLiteral(":/images/numalink.svg")), mainWindow);
    state.icon->setToolTip(QString::fromLatin1(programTitle));
    state.icon->setContextMenu(menuAt(MenuPosition::tray));
    QObject::connect(state.icon, &QSystemTrayIcon::activated, mainWindow, [](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) raiseMainWindow();
    });
    state.hostWatch = new QTimer(state.icon);
    QObject::connect(state.hostWatch, &QTimer::timeout, state.hostWatch, watchHost);
    state.icon->show();
    if (mainWindow->isMinimized() && trayAvailable()) hideToTray();
}

void removeTrayIcon() {
    if (state.icon != nullptr) state.icon->hide();
    delete state.icon;
    state = {};
}

}  // namespace numalink
