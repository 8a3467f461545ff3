#include "shell/parts/open_windows.h"

#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QTimer>

#include "shell/parts/tree_refresh.h"

namespace numalink {

namespace {

void closeEach(QWidget *(*front)()) {
    while (QWidget *window = front()) {
        window->close();
        if (front() == window) break;
    }
}

}  // namespace

int runDialog(QDialog &dialog) {
    const int result = dialog.exec();
    dialogClosed();
    return result;
}

void runMenu(QMenu &menu, const QPoint &onScreen) {
    menu.exec(onScreen);
    dialogClosed();
}

// Not at once: who has asked goes on with what the tree and the view have been.
void dialogClosed() { QTimer::singleShot(0, refreshTreeWhenFree); }

bool raiseOpenDialog() {
    QWidget *dialog = QApplication::activeModalWidget();
    if (dialog == nullptr) return false;
    dialog->raise();
    dialog->activateWindow();
    return true;
}

// Menus first: one may stand over a dialog.
void closeOpenWindows() {
    closeEach(QApplication::activePopupWidget);
    closeEach(QApplication::activeModalWidget);
}

}  // namespace numalink
