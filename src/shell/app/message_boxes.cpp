#include "shell/app/message_boxes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCoreApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QProgressBar>
#include <QTimer>

#include "platform/thread_role.h"
#include "shell/commands/link_commands.h"
#include "shell/dialogs/bitmap_dialog.h"
#include "shell/dialogs/export_dialog.h"
#include "shell/dialogs/import_dialog.h"
#include "shell/dialogs/link_dialogs.h"
#include "shell/dialogs/worker_dialogs.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_window.h"
#include "shell/tree/item_tree.h"
#include "shell/views/item_views.h"
#include "telling/graphical_calls.h"
#include "telling/user_interface.h"

namespace numalink {

namespace {

// The widget that a box stands over: an open dialog, else the main window.
QWidget *boxParent() {
    QWidget *modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : mainWindow;
}

QMessageBox::Icon iconOf(BoxIcon icon) {
    switch (icon) {
        case BoxIcon::information:
            return QMessageBox::Information;
        case BoxIcon::warning:
            return QMessageBox::Warning;
        case BoxIcon::error:
            return QMessageBox::Critical;
        default:
            return QMessageBox::NoIcon;
    }
}

// Titled by its sort alone, whatever part of the program speaks.
QDialog *makeBox(const Box &box) {
    const bool cancellable = box.buttons == BoxButtons::okCancel;
    const bool warns = !cancellable && (box.icon == BoxIcon::warning || box.icon == BoxIcon::error);
    auto *window = new QMessageBox(iconOf(box.icon), boxTitle(warns), toQt(box.body),
                                   cancellable ? QMessageBox::Ok | QMessageBox::Cancel : QMessageBox::Ok, boxParent());
    window->setTextFormat(Qt::PlainText);
    window->button(QMessageBox::Ok)->setText(textOf(Text::ok));
    if (cancellable) window->button(QMessageBox::Cancel)->setText(textOf(Text::cancel));
    return window;
}

bool boxesSilent = false;  // graphical thread only

Answer messageBox(const Box &box) {
    if (threadRole == ThreadRole::graphical && boxesSilent) return Answer::cancel;
    return askByDialog([box] { return makeBox(box); }) == QMessageBox::Ok ? Answer::ok : Answer::cancel;
}

void statusText(StatusPart part, Text, const std::string &text) {
    graphicalRun([&] {
        QLabel *field = part == StatusPart::link ? linkField : itemField;
        if (part == StatusPart::progress || field == nullptr) return;
        // The link's field has a fixed width: what doesn't fit is in its tool tip.
        field->setToolTip(toQt(text));
        const bool fixed = part == StatusPart::link;
        field->setText(fixed ? field->fontMetrics().elidedText(toQt(text), Qt::ElideRight, field->width())
                             : toQt(text));
    });
}

void progressRange(int maximum) {
    graphicalRun([&] {
        if (progressBar == nullptr) return;
        progressBar->setRange(0, maximum > 0 ? maximum : 1);
        progressBar->setValue(0);
    });
}

void progressPosition(int position) {
    graphicalRun([&] {
        if (progressBar == nullptr) return;
        progressBar->setValue(position);
        progressBar->repaint();
    });
}

void waitCursor(bool on) {
    graphicalRun([&] { on ? QApplication::setOverrideCursor(Qt::WaitCursor) : QApplication::restoreOverrideCursor(); });
}

bool leaveView() {
    bool left = false;
    graphicalRun([&] { left = leaveCurrentView(); });
    return left;
}

// One event wakes the graphical thread, whichever loop it is in.
void wake() { QMetaObject::invokeMethod(qApp, graphicalCallsServe, Qt::QueuedConnection); }

}  // namespace

void installUserInterface() {
    graphicalWake = wake;
    userInterface.messageBox = messageBox;
    userInterface.statusText = statusText;
    userInterface.progressRange = progressRange;
    userInterface.progressPosition = progressPosition;
    userInterface.waitCursor = waitCursor;
    userInterface.refreshTree = refreshTree;
    userInterface.leaveCurrentView = leaveView;
    userInterface.askImport = askImport;
    userInterface.askImportTaken = askImportTaken;
    userInterface.askItemExists = askItemExists;
    userInterface.askPictureSlot = askPictureSlot;
    userInterface.transmitQueueChanged = queueMarked;
    userInterface.displayChanged = displayMarked;
    userInterface.askExport = askExport;
    userInterface.askBitmap = askBitmap;
}

void silenceBoxes(bool on) { boxesSilent = on; }

void removeUserInterface() { userInterface = userInterfaceSilent; }

}  // namespace numalink
