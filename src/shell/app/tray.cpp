#include "shell/app/tray.h"

#include <QApplication>
#include <QIcon>
#include <QMainWindow>
#include <QMenu>
#include <QSystemTrayIcon>

#include "shell/app/start_up.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "telling/tell_user.h"

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
    trayMenu->addAction(textOf(Text::trayExit), mainWindow, shutDown);
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
