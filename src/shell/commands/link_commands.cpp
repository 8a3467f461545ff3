#include "shell/commands/link_commands.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileInfo>
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
#include "shell/dialogs/port_choice.h"
#include "shell/dialogs/settings_dialog.h"
#include "shell/parts/command_states.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/selection.h"
#include "shell/tree/several.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int deadlineMilliseconds = 500;

// The widgets are the main window's children, and go with it.
struct LinkCommands {
    QPointer<QTimer> deadlineTimer;
    QPointer<QDialog> queueWindow;
    QPointer<QListWidget> queueList;
    QPointer<QPushButton> sendButton, removeButton, clearButton, againButton;
};
LinkCommands state;

void showButtons() {
    state.sendButton->setEnabled(transmitCanBegin());
    state.removeButton->setEnabled(state.queueList->currentItem() != nullptr);
    state.clearButton->setEnabled(state.queueList->count() > 0);
    state.againButton->setEnabled(transmitDroppedCount() > 0);
}

// The list is made anew with each entry that goes; what is chosen in it stays chosen, or the one in its place.
void showQueue() {
    commandStatesChanged();
    if (state.queueList == nullptr) return;
    const QListWidgetItem *chosen = state.queueList->currentItem();
    const ItemId chosenId = chosen == nullptr ? noItem : chosen->data(Qt::UserRole).toUInt();
    const int chosenRow = state.queueList->currentRow();
    state.queueList->clear();
    for (const ItemId id : transmitQueueIds()) {
        const std::optional<ItemEntry> item = storeReadEntry(id);
        auto *row = new QListWidgetItem(item ? nameToQt(item->name) : QStringLiteral("?"), state.queueList);
        row->setData(Qt::UserRole, id);
        if (id == chosenId) state.queueList->setCurrentItem(row);
    }
    if (state.queueList->currentItem() == nullptr && state.queueList->count() > 0)
        state.queueList->setCurrentRow(std::clamp(chosenRow, 0, state.queueList->count() - 1));
    showButtons();
}

void removeChosen() {
    const QListWidgetItem *row = state.queueList->currentItem();
    if (row != nullptr) transmitQueueRemove(row->data(Qt::UserRole).toUInt());
}

bool listEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Delete) return false;
    removeChosen();
    return true;
}

QPushButton *addButton(QDialogButtonBox *buttons, Text text, Text tip, void (*pressed)()) {
    QPushButton *button = buttons->addButton(textOf(text), QDialogButtonBox::ActionRole);
    button->setToolTip(textOf(tip));
    button->setAutoDefault(false);  // Enter in the list does nothing
    QObject::connect(button, &QPushButton::clicked, state.queueWindow, pressed);
    return button;
}

void makeQueueWindow() {
    state.queueWindow =
        new QDialog(mainWindow);  // no tool window: the letters of its buttons would be those of the menus
    state.queueWindow->setObjectName(QStringLiteral("queueWindow"));
    state.queueWindow->setWindowTitle(textOf(Text::queueTitle));
    state.queueList = new QListWidget;
    state.queueList->setAccessibleName(textOf(Text::queueTitle));
    state.queueList->setToolTip(textOf(Text::tipQueueList));
    auto *buttons = new QDialogButtonBox(Qt::Vertical);
    state.sendButton = addButton(buttons, Text::menuTransmitQueue, Text::tipTransmitQueue, [] { beginTransmit(); });
    state.removeButton = addButton(buttons, Text::queueRemove, Text::tipQueueRemove, removeChosen);
    state.clearButton = addButton(buttons, Text::queueClear, Text::tipQueueClear, transmitQueueClear);
    state.againButton = addButton(buttons, Text::queueAgain, Text::tipQueueAgain, [] { transmitQueueAgain(); });
    addButton(buttons, Text::closeWindow, Text::closeWindow, [] { state.queueWindow->close(); });
    addHelp(state.queueWindow, buttons);
    QObject::connect(state.queueList, &QListWidget::currentItemChanged, state.queueWindow, showButtons);
    hookEvents(state.queueList, listEvent);
    auto *layout = new QHBoxLayout(state.queueWindow);
    layout->addWidget(state.queueList);
    layout->addWidget(buttons);
}

// "FTDI FT232R USB UART (ttyUSB0)", or the path where no adapter tells its name.
QString portWords(const std::string &device) {
    const QString adapter = toQt(serialAdapterName(device));
    if (adapter.isEmpty()) return toQt(device);
    const QString node = QFileInfo(QFileInfo(toQt(device)).canonicalFilePath()).fileName();
    return adapter + QStringLiteral(" (") + node + QLatin1Char(')');
}

std::vector<OfferedPort> portsOffered() {
    std::vector<OfferedPort> ports;
    for (const std::string &device : serialDevices()) ports.push_back({device, portWords(device)});
    return ports;
}

}  // namespace

void startLink() {
    listSerialPorts = portsOffered;
    linkSettingsChanged = startLinkThread;
    if (state.deadlineTimer == nullptr) {
        state.deadlineTimer = new QTimer(mainWindow);
        QObject::connect(state.deadlineTimer, &QTimer::timeout, mainWindow, transmitDeadlineTest);
    }
    state.deadlineTimer->start(deadlineMilliseconds);
    startLinkThread();
}

void stopLink() {
    if (state.deadlineTimer != nullptr) state.deadlineTimer->stop();
    stopLinkThread();
}

void forgetLinkCommands() { state = {}; }

void transmitSelected() {
    if (!severalSelected()) {
        queueAndBegin(selectedItemId());
        return;
    }
    const std::vector<ItemId> ids = selectedOutermost();
    const std::vector<std::string> count = {std::to_string(ids.size())};
    const std::string body = wording(Text::confirmTransmitSeveral, count) + "\n\n" + namesOfSeveral(ids);
    if (tellComposed(Text::confirmTransmitSeveral, body, count, BoxIcon::none, BoxButtons::okCancel) == Answer::ok)
        queueAndBegin(ids);
}

void queueSelected() { queueAndTell(selectedOutermost()); }

void openQueueWindow() {
    if (state.queueWindow == nullptr) makeQueueWindow();
    showQueue();
    showUnminimised(state.queueWindow);
    state.queueWindow->raise();
    state.queueWindow->activateWindow();
    state.queueList->setFocus();
}

void queueMarked() {
    QMetaObject::invokeMethod(
        qApp,
        [] {
            if (mainWindow == nullptr) return;
            showQueue();
            if (const std::string words = transmitSentWords(); !words.empty())
                userInterface.statusText(StatusPart::item, Text::none, words);
        },
        Qt::QueuedConnection);
}

}  // namespace numalink
