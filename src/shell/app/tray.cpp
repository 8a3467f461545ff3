#include "shell/app/tray.h"

#include <QApplication>
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
#include "shell/parts/shell_texts.h"
#include "shell/run/debug_window.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

QSystemTrayIcon *trayIcon = nullptr;
QTimer *hostWatch = nullptr;  // runs while the window is hidden: nobody tells when the area goes
bool hostMissed = false;
QList<QPointer<QWidget>> hiddenAlong;  // windows over the main one, to come back with it

constexpr int hostWatchMilliseconds = 1000;

// A panel that starts again is away for a moment: the second miss in a row counts.
void watchHost() {
    const bool missed = !trayAvailable();
    if (missed && hostMissed) raiseMainWindow();
    hostMissed = missed;
}

void hideAlong() {
    for (QWidget *window : mainWindow->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        if (!window->isWindow()) continue;
        if (window->isVisible()) hiddenAlong.append(window);
        window->hide();
    }
}

void showHiddenAlong() {
    for (const QPointer<QWidget> &window : std::exchange(hiddenAlong, {}))
        if (window != nullptr) showUnminimised(window);
    // What they belong to may have gone meanwhile.
    if (!isTextKind(viewKind)) hideSymbols();
    if (!emulatorRunning) hideDebugWindow();
}

}  // namespace

bool trayAvailable() { return trayIcon != nullptr && QSystemTrayIcon::isSystemTrayAvailable(); }

void hideToTray() {
    if (mainWindow->isHidden()) return;
    hideAlong();
    mainWindow->hide();
    hostMissed = false;
    hostWatch->start(hostWatchMilliseconds);
}

void raiseMainWindow() {
    if (hostWatch != nullptr) hostWatch->stop();
    mainWindow->setWindowState(mainWindow->windowState() & ~Qt::WindowMinimized);
    mainWindow->show();
    showHiddenAlong();
    mainWindow->raise();
    mainWindow->activateWindow();
    if (QWidget *dialog = QApplication::activeModalWidget()) {
        dialog->raise();
        dialog->activateWindow();
    }
}

void addTrayIcon() {
    trayIcon = new QSystemTrayIcon(QIcon(QStringLiteral(":/images/numalink.svg")), mainWindow);
    trayIcon->setToolTip(QString::fromLatin1(programTitle));
    trayIcon->setContextMenu(menuAt(MenuPosition::tray));
    QObject::connect(trayIcon, &QSystemTrayIcon::activated, mainWindow, [](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) raiseMainWindow();
    });
    hostWatch = new QTimer(trayIcon);
    QObject::connect(hostWatch, &QTimer::timeout, hostWatch, watchHost);
    trayIcon->show();
    if (mainWindow->isMinimized() && trayAvailable()) hideToTray();
}

void removeTrayIcon() {
    if (trayIcon != nullptr) trayIcon->hide();
    delete trayIcon;
    trayIcon = nullptr;
    hostWatch = nullptr;
    hiddenAlong.clear();
}

}  // namespace numalink
