#include "shell/tray.h"

#include <QApplication>
#include <QIcon>
#include <QMainWindow>
#include <QMenu>
#include <QSystemTrayIcon>

#include "settings/tell_user.h"
#include "shell/shell_texts.h"
#include "shell/shell_widgets.h"
#include "shell/start_up.h"

namespace numalink {

namespace {

QSystemTrayIcon *trayIcon = nullptr;
QMenu *trayMenu = nullptr;

}  // namespace

bool trayAvailable() { return trayIcon != nullptr && QSystemTrayIcon::isSystemTrayAvailable(); }

void raiseMainWindow() {
    mainWindow->setWindowState(mainWindow->windowState() & ~Qt::WindowMinimized);
    mainWindow->show();
    mainWindow->raise();
    mainWindow->activateWindow();
    if (QWidget *dialog = QApplication::activeModalWidget()) {
        dialog->raise();
        dialog->activateWindow();
    }
}

void addTrayIcon() {
    trayMenu = new QMenu;
    trayMenu->addAction(textOf(6), mainWindow, shutDown);
    trayIcon = new QSystemTrayIcon(QIcon(QStringLiteral(":/images/numalink.svg")), mainWindow);
    trayIcon->setToolTip(QString::fromLatin1(programTitle));
    trayIcon->setContextMenu(trayMenu);
    QObject::connect(trayIcon, &QSystemTrayIcon::activated, mainWindow, [](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) raiseMainWindow();
    });
    trayIcon->show();
    if (mainWindow->isMinimized() && trayAvailable()) mainWindow->hide();
}

void removeTrayIcon() {
    if (trayIcon != nullptr) trayIcon->hide();
    delete trayIcon;
    trayIcon = nullptr;
    delete trayMenu;
    trayMenu = nullptr;
}

}  // namespace numalink
