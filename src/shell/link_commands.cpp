#include "shell/link_commands.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "link/link_thread.h"
#include "link/transmit_queue.h"
#include "platform/serial_line.h"
#include "settings/tell_user.h"
#include "shell/command_table.h"
#include "shell/item_tree.h"
#include "shell/menus.h"
#include "shell/settings_dialog.h"
#include "shell/shell_texts.h"
#include "shell/shell_widgets.h"
#include "store/item_store.h"

namespace numalink {

namespace {

constexpr int deadlineMilliseconds = 500;

QPointer<QTimer> deadlineTimer;
QPointer<QDialog> queueWindow;
QPointer<QListWidget> queueList;
QPointer<QPushButton> queueAgainButton;

void showQueue() {
    setCommandEnabled(command::transmitQueue, transmitCanBegin());
    if (queueList == nullptr) return;
    queueList->clear();
    for (const ItemId id : transmitQueueIds()) {
        const std::optional<ItemEntry> item = storeReadEntry(id);
        auto *row = new QListWidgetItem(item ? nameToQt(item->name) : QStringLiteral("?"), queueList);
        row->setData(Qt::UserRole, id);
    }
    queueAgainButton->setEnabled(transmitDroppedCount() > 0);
}

void removeChosen() {
    const QListWidgetItem *row = queueList->currentItem();
    if (row != nullptr) transmitQueueRemove(row->data(Qt::UserRole).toUInt());
}

QPushButton *addButton(QDialogButtonBox *buttons, OwnText text, void (*pressed)()) {
    QPushButton *button = buttons->addButton(textOf(text), QDialogButtonBox::ActionRole);
    QObject::connect(button, &QPushButton::clicked, queueWindow, pressed);
    return button;
}

void openQueueWindow() {
    if (queueWindow == nullptr) {
        queueWindow = new QDialog(mainWindow, Qt::Tool);
        queueWindow->setObjectName(QStringLiteral("queueWindow"));
        queueWindow->setWindowTitle(textOf(OwnText::queueTitle));
        queueList = new QListWidget;
        queueList->setAccessibleName(textOf(OwnText::queueTitle));
        auto *buttons = new QDialogButtonBox;
        addButton(buttons, OwnText::queueRemove, removeChosen);
        addButton(buttons, OwnText::queueClear, transmitQueueClear);
        queueAgainButton = addButton(buttons, OwnText::queueAgain, [] { transmitQueueAgain(); });
        auto *layout = new QVBoxLayout(queueWindow);
        layout->addWidget(queueList);
        layout->addWidget(buttons);
    }
    showQueue();
    queueWindow->show();
    queueWindow->raise();
}

std::vector<std::string> portsOffered() {
    std::vector<std::string> ports = {"COM1", "COM2", "COM3", "COM4"};
    for (const std::string &device : serialDevices()) ports.push_back(device);
    return ports;
}

void restartLink() {
    if (linkConversationRuns()) statusLine(StatusPart::link, OwnText::transferStopped);
    startLinkThread();
}

}  // namespace

void startLink() {
    listSerialPorts = portsOffered;
    linkSettingsChanged = restartLink;
    deadlineTimer = new QTimer(mainWindow);
    QObject::connect(deadlineTimer, &QTimer::timeout, mainWindow, transmitDeadlineTest);
    deadlineTimer->start(deadlineMilliseconds);
    startLinkThread();
}

void stopLink() {
    if (deadlineTimer != nullptr) deadlineTimer->stop();
    stopLinkThread();
}

int transmitSelected() {
    const bool wasEmpty = transmitQueueCount() == 0;
    if (queueItem(selectedItemId()) && wasEmpty) beginTransmit();
    return 1;
}

int queueSelected() {
    queueItem(selectedItemId());
    return 1;
}

int transmitQueued() {
    beginTransmit();
    return 1;
}

void buildCommunicationMenu() {
    QMenu *menu = menuAt(static_cast<int>(MenuPosition::communication));
    QAction *queue = menu->addAction(textOf(OwnText::menuQueue));
    queue->setObjectName(QStringLiteral("queueAction"));
    QObject::connect(queue, &QAction::triggered, menu, openQueueWindow);
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
