#include "shell/commands/link_commands.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <algorithm>

#include "link/link_thread.h"
#include "link/transmit_queue.h"
#include "platform/serial_line.h"
#include "shell/dialogs/settings_dialog.h"
#include "shell/parts/command_states.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "store/item_store.h"

namespace numalink {

namespace {

constexpr int deadlineMilliseconds = 500;

QPointer<QTimer> deadlineTimer;
QPointer<QDialog> queueWindow;
QPointer<QListWidget> queueList;
QPointer<QPushButton> sendButton, removeButton, clearButton, againButton;

void showButtons() {
    sendButton->setEnabled(transmitCanBegin());
    removeButton->setEnabled(queueList->currentItem() != nullptr);
    clearButton->setEnabled(queueList->count() > 0);
    againButton->setEnabled(transmitDroppedCount() > 0);
}

// The list is made anew with each entry that goes; what is chosen in it stays chosen, or the one in its place.
void showQueue() {
    commandStatesChanged();
    if (queueList == nullptr) return;
    const QListWidgetItem *chosen = queueList->currentItem();
    const ItemId chosenId = chosen == nullptr ? noItem : chosen->data(Qt::UserRole).toUInt();
    const int chosenRow = queueList->currentRow();
    queueList->clear();
    for (const ItemId id : transmitQueueIds()) {
        const std::optional<ItemEntry> item = storeReadEntry(id);
        auto *row = new QListWidgetItem(item ? nameToQt(item->name) : QStringLiteral("?"), queueList);
        row->setData(Qt::UserRole, id);
        if (id == chosenId) queueList->setCurrentItem(row);
    }
    if (queueList->currentItem() == nullptr && queueList->count() > 0)
        queueList->setCurrentRow(std::clamp(chosenRow, 0, queueList->count() - 1));
    showButtons();
}

void removeChosen() {
    const QListWidgetItem *row = queueList->currentItem();
    if (row != nullptr) transmitQueueRemove(row->data(Qt::UserRole).toUInt());
}

bool listEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Delete) return false;
    removeChosen();
    return true;
}

QPushButton *addButton(QDialogButtonBox *buttons, const QString &text, void (*pressed)()) {
    QPushButton *button = buttons->addButton(text, QDialogButtonBox::ActionRole);
    button->setAutoDefault(false);  // Enter in the list does nothing
    QObject::connect(button, &QPushButton::clicked, queueWindow, pressed);
    return button;
}

void makeQueueWindow() {
    queueWindow = new QDialog(mainWindow);  // no tool window: the letters of its buttons would be those of the menus
    queueWindow->setObjectName(QStringLiteral("queueWindow"));
    queueWindow->setWindowTitle(textOf(Text::queueTitle));
    queueList = new QListWidget;
    queueList->setAccessibleName(textOf(Text::queueTitle));
    auto *buttons = new QDialogButtonBox(Qt::Vertical);
    sendButton = addButton(buttons, textOf(Text::menuTransmitQueue), [] { beginTransmit(); });
    removeButton = addButton(buttons, textOf(Text::queueRemove), removeChosen);
    clearButton = addButton(buttons, textOf(Text::queueClear), transmitQueueClear);
    againButton = addButton(buttons, textOf(Text::queueAgain), [] { transmitQueueAgain(); });
    QObject::connect(queueList, &QListWidget::currentItemChanged, queueWindow, showButtons);
    hookEvents(queueList, listEvent);
    auto *layout = new QHBoxLayout(queueWindow);
    layout->addWidget(queueList);
    layout->addWidget(buttons);
}

std::vector<std::string> portsOffered() {
    std::vector<std::string> ports;
    for (const char *name : {"COM1", "COM2", "COM3", "COM4"})
        if (serialDevicePath(name) != name) ports.emplace_back(name);
    for (const std::string &device : serialDevices()) ports.push_back(device);
    return ports;
}

}  // namespace

void startLink() {
    listSerialPorts = portsOffered;
    linkSettingsChanged = startLinkThread;
    if (deadlineTimer == nullptr) {
        deadlineTimer = new QTimer(mainWindow);
        QObject::connect(deadlineTimer, &QTimer::timeout, mainWindow, transmitDeadlineTest);
    }
    deadlineTimer->start(deadlineMilliseconds);
    startLinkThread();
}

void stopLink() {
    if (deadlineTimer != nullptr) deadlineTimer->stop();
    stopLinkThread();
}

void transmitSelected() { queueAndBegin(selectedItemId()); }
void queueSelected() { queueAndTell(selectedItemId()); }

void openQueueWindow() {
    if (queueWindow == nullptr) makeQueueWindow();
    showQueue();
    showUnminimised(queueWindow);
    queueWindow->raise();
    queueWindow->activateWindow();
    queueList->setFocus();
}

void queueMarked() {
    QMetaObject::invokeMethod(
        qApp,
        [] {
            if (mainWindow != nullptr) showQueue();
        },
        Qt::QueuedConnection);
}

}  // namespace numalink
