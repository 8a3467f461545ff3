#include "shell/app/message_boxes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCoreApplication>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <atomic>

#include "platform/event_log.h"
#include "platform/thread_role.h"
#include "shell/commands/link_commands.h"
#include "shell/dialogs/bitmap_dialog.h"
#include "shell/dialogs/export_dialog.h"
#include "shell/dialogs/import_dialog.h"
#include "shell/dialogs/link_dialogs.h"
#include "shell/dialogs/worker_dialogs.h"
#include "shell/library/arrivals_dialog.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/status_bar.h"
#include "shell/parts/tree_refresh.h"
#include "shell/run/emulator_window.h"
#include "shell/views/item_views.h"
#include "telling/graphical_calls.h"
#include "telling/user_interface.h"

namespace numalink {

namespace {

std::atomic<Text> linkNoted = Text::none;

// The widget that a box stands over: an open dialog, else the full screen, else the main window.
QWidget *boxParent() {
    QWidget *modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : runWindow();
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
    const bool cancellable = box.hasCancel();
    const bool warns = !cancellable && (box.icon == BoxIcon::warning || box.icon == BoxIcon::error);
    auto *window = new QMessageBox(iconOf(box.icon), boxTitle(warns), toQt(box.body), QMessageBox::Ok, boxParent());
    if (cancellable) window->addButton(QMessageBox::Cancel);
    window->setTextFormat(Qt::PlainText);
    window->button(QMessageBox::Ok)->setText(textOf(Text::ok));
    if (cancellable) window->button(QMessageBox::Cancel)->setText(textOf(Text::cancel));
    if (box.buttons == BoxButtons::cancelOk) window->setDefaultButton(QMessageBox::Cancel);
    if (box.buttons == BoxButtons::okGoTo) {
        window->addButton(QMessageBox::Yes)->setText(textOf(Text::goToStatement));
        window->setDefaultButton(QMessageBox::Ok);
        window->setEscapeButton(QMessageBox::Ok);
        placeBesideDisplay(window);
    }
    return window;
}

// What the box says, without what stands in its places: names and paths are nobody else's business.
void noteBox(const Box &box) {
    const std::string words = box.bodyText == Text::none ? box.title : wording(box.bodyText);
    noteEvent("box " + std::to_string(textNumber(box.bodyText)) + " " + words);
}

Answer messageBox(const Box &box) {
    if (threadRole == ThreadRole::graphical && boxesSilenced()) return Answer::cancel;
    noteBox(box);
    const int button = askByDialog([box] { return makeBox(box); });
    if (button == QMessageBox::Yes) QMetaObject::invokeMethod(qApp, goToRunFault, Qt::QueuedConnection);
    return button == QMessageBox::Ok ? Answer::ok : Answer::cancel;
}

void statusText(StatusPart part, Text which, const std::string &text) {
    if (part == StatusPart::progress) return;
    // A reception tells of each item by the same words: once is enough, or they would push out all else.
    if (part == StatusPart::link && which != linkNoted.exchange(which) && which != Text::none)
        noteEvent("link " + wording(which));
    graphicalRun(
        [&] { showStatus(part == StatusPart::link ? linkField : itemField, toQt(text), which == Text::portNone); });
}

void progressRange(int maximum) {
    graphicalRun([&] { showProgress(maximum); });
}

void progressPosition(int position) {
    graphicalRun([&] { moveProgress(position); });
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
    userInterface.askArrivals = askArrivals;
    userInterface.askItemExists = askItemExists;
    userInterface.askPictureSlot = askPictureSlot;
    userInterface.transmitQueueChanged = queueMarked;
    userInterface.displayChanged = displayMarked;
    userInterface.askExport = askExport;
    userInterface.askBitmap = askBitmap;
}

void removeUserInterface() { userInterface = userInterfaceSilent; }

}  // namespace numalink
