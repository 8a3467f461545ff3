#include "shell/app/window_events.h"

#include <QApplication>
#include <QDropEvent>
#include <QMainWindow>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <QUrl>

#include "shell/app/start_up.h"
#include "shell/app/tray.h"
#include "shell/commands/command_handler.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_layout.h"
#include "shell/parts/main_widgets.h"
#include "shell/run/emulator_window.h"

namespace numalink {

namespace {

QStringList filesIn(const QMimeData *data) {
    QStringList paths;
    for (const QUrl &url : data->urls())
        if (url.isLocalFile()) paths << url.toLocalFile();
    return paths;
}

bool dropped(QDropEvent &event) {
    const QStringList paths = filesIn(event.mimeData());
    event.acceptProposedAction();
    // The drop must have ended before boxes open: until then the other program waits.
    QTimer::singleShot(0, mainWindow, [paths] { importDropped(paths); });
    return true;
}

// An open dialog would stay on the screen without its window.
void hideWhenMinimized() {
    if (mainWindow->isMinimized() && QApplication::activeModalWidget() == nullptr) hideToTray();
}

bool windowEvent(QWidget *, QEvent *event) {
    switch (event->type()) {
        case QEvent::Close:
            event->ignore();
            shutDown();
            return true;
        case QEvent::WindowStateChange:
            if (mainWindow->isMinimized() && trayAvailable()) QTimer::singleShot(0, mainWindow, hideWhenMinimized);
            return false;
        case QEvent::DragEnter: {
            auto &drag = *static_cast<QDragEnterEvent *>(event);
            if (filesIn(drag.mimeData()).isEmpty()) return false;
            drag.acceptProposedAction();
            return true;
        }
        case QEvent::Drop:
            return dropped(*static_cast<QDropEvent *>(event));
        default:
            return false;
    }
}

bool clientEvent(QWidget *, QEvent *event) {
    if (event->type() == QEvent::Resize) applyLayout();
    return false;
}

void place(QWidget *widget, const Rectangle &where) {
    widget->setGeometry(where.x, where.y, where.width, where.height);
}

}  // namespace

void applyLayout() {
    const MainLayout layout = layoutFor(clientArea->width(), clientArea->height(), treeVisible);
    place(treeView, layout.tree);
    treeView->setVisible(treeVisible);
    place(treeToggleButton, layout.toggle);
    place(lineNumberEdit, layout.lineNumbers);
    place(programEdit, layout.program);
    place(containerWindow, layout.container);
    placeEmulatorWindow();
}

void connectWindow() {
    hookEvents(mainWindow, windowEvent);
    hookEvents(clientArea, clientEvent);
    QObject::connect(treeToggleButton, &QToolButton::clicked, mainWindow, [] { handleCommand(40055); });
    applyLayout();
}

}  // namespace numalink
