#include "shell/app/window_events.h"

#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMimeData>
#include <QTimer>
#include <QToolButton>
#include <QUrl>

#include "shell/app/tray.h"
#include "shell/commands/command_handler.h"
#include "shell/commands/file_commands.h"
#include "shell/dialogs/settings_dialog.h"
#include "shell/parts/client_layout.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"

namespace numalink {

namespace {

// Names that are no UTF-8 come through: an address has their bytes as they are.
std::vector<std::string> filesIn(const QMimeData *data) {
    std::vector<std::string> paths;
    for (const QUrl &url : data->urls())
        if (url.isLocalFile())
            paths.push_back(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toUtf8()).toStdString());
    return paths;
}

bool dropped(QDropEvent &event) {
    const std::vector<std::string> paths = filesIn(event.mimeData());
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
            endProgram();
            return true;
        case QEvent::WindowStateChange:
            if (mainWindow->isMinimized() && trayAvailable()) QTimer::singleShot(0, mainWindow, hideWhenMinimized);
            return false;
        case QEvent::DragEnter: {
            auto &drag = *static_cast<QDragEnterEvent *>(event);
            if (filesIn(drag.mimeData()).empty()) return false;
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

}  // namespace

void connectWindow() {
    hookEvents(mainWindow, windowEvent);
    hookEvents(clientArea, clientEvent);
    QObject::connect(treeToggleButton, &QToolButton::clicked, mainWindow, [] { handleCommand(CommandId::hideTree); });
    // Queued, since the settings may change the text that the click comes from.
    QObject::connect(linkField, &QLabel::linkActivated, linkField, choosePort, Qt::QueuedConnection);
    applyLayout();
}

}  // namespace numalink
