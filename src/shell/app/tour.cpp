#include "shell/app/tour.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QLabel>
#include <QMainWindow>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <memory>
#include <utility>

#include "calculator/program_info.h"
#include "emulator/machine/machine.h"
#include "link/link_thread.h"
#include "link/transmit_queue.h"
#include "platform/program_folder.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "shell/app/library_change.h"
#include "shell/commands/file_commands.h"
#include "shell/commands/undo_commands.h"
#include "shell/editor/program_clipboard.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/scale.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "shell/run/emulator_window.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/selection.h"
#include "shell/views/item_views.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr char ownName[] = "HELLO", runName[] = "SNAKE", pictureName[] = "Picture1";
constexpr char ownLines[] = "ClrText\n0->S\nFor 1->A To 6\nLocate A,A,\"HI\"\nS+A->S:Next\nLocate 1,7,S";
constexpr int panelWidth = 320;
constexpr int portMilliseconds = 100, portTries = 100;  // until the played calculator's port is there

struct Tour {
    QPointer<QDialog> panel;
    QPointer<QLabel> words, count;
    QPointer<QPushButton> back, next;
    std::unique_ptr<QTemporaryDir> folder;
    std::string formerLibrary, formerPort, formerType;
    ItemId formerItem = noItem;      // selected in that library
    QProcess *calculator = nullptr;  // plays one at the other end of a port; the panel's child
    std::size_t step = 0;
};
Tour state;

ItemId itemIn(const char *folder, const char *name) { return storeFindItem(name, storeResolvePath(folder, false)); }
ItemId ownProgram() { return itemIn("/Games", ownName); }

void show(ItemId item) {
    if (item != noItem && treeEntryOf(item) != nullptr && selectItem(item)) showInTree(item);
}

void takeSamples() {
    if (itemIn("/Games", runName) == noItem) importSamples();
}

void runItem(ItemId item) {
    if (emulatorShown()) return;
    show(item);
    if (selectedItemId() == item) emulatorToggle();
}

void makeProgram() {
    emulatorStop();
    if (ownProgram() == noItem) {
        NewItem program;
        program.name = ownName;
        program.parent = storeResolvePath("/Games", true);
        program.kind = kind::program;
        program.head = encodeProgramInfo({.imageLength = 1, .name = ownName, .password = {}});
        program.data = {':', 0xFF};
        storeAddItem(program);
        refreshTree();
    }
    show(ownProgram());
    programEdit->setFocus();
}

void writeLines() {
    makeProgram();
    if (viewItemId != ownProgram() || !programEdit->toPlainText().isEmpty()) return;
    QMimeData text;
    text.setText(QString::fromLatin1(ownLines));
    pasteProgram(&text);
}

// As soon as the played calculator has its port, and the link that port.
void sendWhenReady(const std::string &port, int tries) {
    if (state.panel == nullptr || tries == 0) return;
    if (settingsValue(setting::comPort) != port && QFile::exists(toQt(port))) {
        settingsSetValue(setting::comPort, port);
        settingsSetValue(setting::linkType, "CFX");
        startLinkThread();
    } else if (settingsValue(setting::comPort) == port && linkPort() == LinkPort::opened) {
        queueAndBegin(ownProgram());
        return;
    }
    QTimer::singleShot(portMilliseconds, state.panel, [port, tries] { sendWhenReady(port, tries - 1); });
}

void sendProgram() {
    emulatorStop();
    if (ownProgram() == noItem) writeLines();
    show(ownProgram());
    if (!leaveCurrentView()) return;
    openSelectedItem();
    const QString folder = state.folder->path();
    if (state.calculator == nullptr) {
        state.calculator = new QProcess(state.panel);
        state.calculator->start(
            toQt(programFolder()) + QStringLiteral("numalink-calculator"),
            {QStringLiteral("--receive"), folder + QStringLiteral("/calculator"), QStringLiteral("--link"),
             folder + QStringLiteral("/port"), QStringLiteral("--paced")});
    }
    sendWhenReady(folder.toStdString() + "/port", portTries);
}

void deleteProgram() {
    const ItemId program = ownProgram();
    if (program == noItem) return;
    emulatorStop();
    if (viewItemId == program && !leaveCurrentView()) return;
    storeDelete(program);
    refreshTree();
}

void takeDeletionBack() {
    if (ownProgram() == noItem) undoLast();
    show(ownProgram());
}

struct TourStep {
    Text text;
    void (*act)();  // what Next does, where the reader hasn't done it himself
};
constexpr TourStep steps[] = {
    {Text::tourWelcome, [] {}},
    {Text::tourImport, takeSamples},
    {Text::tourLook, [] { show(itemIn("/Plots", pictureName)); }},
    {Text::tourRun, [] { runItem(itemIn("/Games", runName)); }},
    {Text::tourPlay, makeProgram},
    {Text::tourWrite, writeLines},
    {Text::tourRunOwn, [] { runItem(ownProgram()); }},
    {Text::tourSend, sendProgram},
    {Text::tourDelete, deleteProgram},
    {Text::tourUndo, takeDeletionBack},
    {Text::tourEnd, [] {}},
};

void showStep() {
    state.words->setText(textOf(steps[state.step].text));
    state.count->setText(textOf(Text::tourCount, {std::to_string(state.step + 1), std::to_string(std::size(steps))}));
    state.back->setEnabled(state.step > 0);
    state.next->setText(textOf(state.step + 1 < std::size(steps) ? Text::tourNext : Text::tourFinish));
}

void goOn() {
    const std::size_t step = state.step;
    if (step + 1 == std::size(steps)) {
        state.panel->reject();
        return;
    }
    state.step++;
    showStep();
    steps[step].act();
    mainWindow->activateWindow();
    if (emulatorShown()) emulatorWindow->setFocus();
}

void goBack() {
    if (state.step > 0) state.step--;
    showStep();
}

void restoreSettings() {
    const bool changed = settingsValue(setting::comPort) != state.formerPort;
    settingsSetValue(setting::comPort, state.formerPort);
    settingsSetValue(setting::linkType, state.formerType);
    if (changed && !settingsSave()) tellUser(Text::settingsNotSaved);
}

// What runs in the tour's library ends, whatever it is at, and nothing of it is stored.
void leaveTour() {
    if (state.folder == nullptr) return;
    emulatorStop();
    stopLinkThread();
    dropCurrentView();
    restoreSettings();
    if (state.calculator != nullptr) state.calculator->kill();
    if (changeLibraryTo(state.formerLibrary, false, ListLibrary::never)) show(state.formerItem);
    state.panel->deleteLater();
    state = {};
}

void makePanel() {
    state.panel = new QDialog(mainWindow, Qt::Tool);
    state.panel->setObjectName(QStringLiteral("tourPanel"));
    state.panel->setWindowTitle(textOf(Text::menuTour).remove(QLatin1Char('&')));
    state.words = new QLabel;
    state.words->setObjectName(QStringLiteral("tourWords"));
    state.words->setWordWrap(true);
    state.words->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    state.count = new QLabel;
    auto *buttons = new QDialogButtonBox;
    state.back = buttons->addButton(textOf(Text::manualBack), QDialogButtonBox::ActionRole);
    state.next = buttons->addButton(textOf(Text::tourNext), QDialogButtonBox::ActionRole);
    QPushButton *leave = buttons->addButton(textOf(Text::tourLeave), QDialogButtonBox::RejectRole);
    state.back->setToolTip(textOf(Text::tipTourBack));
    state.next->setToolTip(textOf(Text::tipTourNext));
    leave->setToolTip(textOf(Text::tipTourLeave));
    state.next->setObjectName(QStringLiteral("tourNext"));
    for (QPushButton *button : {state.back.data(), leave}) button->setAutoDefault(false);
    state.next->setDefault(true);
    state.next->setFocus();
    QObject::connect(state.back, &QPushButton::clicked, state.panel, goBack);
    QObject::connect(state.next, &QPushButton::clicked, state.panel, goOn);
    QObject::connect(leave, &QPushButton::clicked, state.panel, &QDialog::reject);
    QObject::connect(state.panel, &QDialog::rejected, mainWindow, leaveTour, Qt::QueuedConnection);
    auto *layout = new QVBoxLayout(state.panel);
    layout->addWidget(state.words, 1);
    layout->addWidget(state.count);
    layout->addWidget(buttons);
    state.panel->setFixedWidth(grown(panelWidth));
    // As high as the longest step needs: the panel stays where it is while its words change.
    const QMargins margins = layout->contentsMargins();
    const QRect room(0, 0, grown(panelWidth) - margins.left() - margins.right(), QWIDGETSIZE_MAX);
    int height = 0;
    for (const TourStep &step : steps)
        height = std::max(height,
                          state.words->fontMetrics().boundingRect(room, Qt::TextWordWrap, textOf(step.text)).height());
    state.words->setMinimumHeight(height);
}

// Beside or below the main window where the screen has room, else in its corner above the status bar.
void placePanel() {
    constexpr int gap = 12;
    state.panel->adjustSize();
    const QRect screen = mainWindow->screen()->availableGeometry(), window = mainWindow->frameGeometry();
    QRect place(QPoint(window.right() + gap, window.top()),
                QSize(state.panel->width(), state.panel->height() + 2 * gap));
    if (!screen.contains(place)) place.moveRight(window.left() - gap);
    if (!screen.contains(place)) place.moveTopRight({window.right(), window.bottom() + gap});
    if (!screen.contains(place))
        place.moveBottomRight({window.right() - gap, window.bottom() - statusBar->height() - gap});
    state.panel->move(place.topLeft());
}

}  // namespace

bool tourIsOn() { return state.folder != nullptr; }

void startTour() {
    assertRole(ThreadRole::graphical);
    if (!tourIsOn()) {
        auto folder = std::make_unique<QTemporaryDir>();
        const std::string own = folder->path().toStdString() + "/library/";
        std::string former = libraryFolder();
        const ItemId formerItem = selectedItemId();
        if (!folder->isValid() || !changeLibraryTo(own, true, ListLibrary::never)) return;
        state = {};
        state.folder = std::move(folder);
        state.formerLibrary = std::move(former);
        state.formerItem = formerItem;
        state.formerPort = settingsValue(setting::comPort);
        state.formerType = settingsValue(setting::linkType);
        makePanel();
        showStep();
        placePanel();
    }
    state.panel->show();
    state.panel->raise();
    state.panel->activateWindow();
}

void forgetTour() {
    if (!tourIsOn()) return;
    restoreSettings();
    if (state.calculator != nullptr) {
        state.calculator->kill();
        state.calculator->waitForFinished(1000);
    }
    state = {};
}

}  // namespace numalink
