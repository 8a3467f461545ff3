#include "monkey/monkey.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDropEvent>
#include <QFileDialog>
#include <QMainWindow>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>
#include <QUrl>
#include <QWindow>
#include <csignal>
#include <filesystem>
#include <random>

#include "monkey/action_log.h"
#include "monkey/library_watch.h"
#include "platform/clock.h"
#include "settings/settings_store.h"
#include "shell/app/start_up.h"
#include "shell/commands/command_table.h"
#include "shell/commands/menus.h"
#include "shell/dialogs/settings_dialog.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/selection.h"
#include "store/item_store.h"

namespace monkey {

using namespace numalink;

Monkey theMonkey;

namespace {

constexpr std::uint64_t actionsOfLife = 200;  // then the program is asked to end
constexpr std::uint64_t patienceOfEnd = 60;   // further actions, then it is told to
constexpr std::uint64_t actionsBetweenChecks = 60, actionsBetweenFileChecks = 240;

std::mt19937_64 chance;  // seeded anew for each action, so that one that differs leaves the others as they were
std::uint64_t lifeBegan = 0, startedAt = 0;
bool alive = false;
bool acting = false;
int actingLevel = 0;  // of event loops, in which the action under way was begun

std::uint64_t below(std::uint64_t limit) { return chance() % limit; }
bool oneIn(std::uint64_t count) { return below(count) == 0; }
template <typename List>
const auto &oneOf(const List &list) {
    return list[below(std::size(list))];
}

#define LOG(...) logAction(theMonkey.actions, __VA_ARGS__)

Qt::KeyboardModifiers someModifiers() {
    if (!oneIn(3)) return {};
    Qt::KeyboardModifiers modifiers;
    for (const Qt::KeyboardModifier one : {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier, Qt::KeypadModifier})
        if (oneIn(3)) modifiers |= one;
    return modifiers;
}

void pressKey(int key, Qt::KeyboardModifiers modifiers, const QString &text = {}) {
    QPointer<QWindow> window = QGuiApplication::focusWindow();
    if (window == nullptr && mainWindow != nullptr) window = mainWindow->windowHandle();
    if (window == nullptr) return;
    qt_handleKeyEvent(window, QEvent::KeyPress, key, modifiers, text);
    QApplication::processEvents();
    if (window == nullptr) return;
    qt_handleKeyEvent(window, QEvent::KeyRelease, key, modifiers, text);
    QApplication::processEvents();
}

void anyKey() {
    int key = oneIn(2) ? Qt::Key_Escape + static_cast<int>(below(0x40)) : 0x20 + static_cast<int>(below(0x5F));
    if (oneIn(3))
        key = oneOf(std::to_array<int>({Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Return,
                                        Qt::Key_Tab, Qt::Key_Delete, Qt::Key_F2, Qt::Key_F7, Qt::Key_Menu}));
    const Qt::KeyboardModifiers modifiers = someModifiers();
    const bool plain = (modifiers & (Qt::ControlModifier | Qt::AltModifier)) == 0;
    LOG("key %#x, modifiers %#x", static_cast<unsigned>(key), static_cast<unsigned>(modifiers.toInt()));
    pressKey(key, modifiers, key < 0x7F && plain ? QString(QChar(key)) : QString());
}

void typeText() {
    static const char *const texts[] = {
        "While 1", "WhileEnd", "Locate 1,1,\"HI\"", "1->A", "For 1->A To 99", "Next", "?->B",     "A/0",
        "Goto 1",  "Lbl 1",    "Prog \"SNAKE\"",    "(((",  "NAME",           "\"",   "Plot 1,2", "Dsz A",
        "Getkey"};
    const std::string text = oneOf(texts);
    LOG("types %s", text.c_str());
    for (const char letter : text) pressKey(letter, {}, QString(QLatin1Char(letter)));
    if (oneIn(2)) pressKey(Qt::Key_Return, {}, QStringLiteral("\r"));
}

void mouse(QWindow *window, QEvent::Type type, const QPoint &place, Qt::MouseButton button, Qt::MouseButtons buttons) {
    qt_handleMouseEvent(window, place, window->mapToGlobal(place), buttons, button, type, {},
                        static_cast<int>(tickCount()));
    QApplication::processEvents();
}

void click(QWindow *target, const QPoint &place, Qt::MouseButton button = Qt::LeftButton) {
    const QPointer<QWindow> window = target;
    mouse(window, QEvent::MouseMove, place, Qt::NoButton, {});
    if (window != nullptr) mouse(window, QEvent::MouseButtonPress, place, button, button);
    if (window != nullptr) mouse(window, QEvent::MouseButtonRelease, place, button, {});
}

void clickCentre(QWidget *widget) {
    if (QWindow *window = widget->window()->windowHandle())
        click(window, widget->mapTo(widget->window(), widget->rect().center()));
}

// A window that is on screen: where a menu or dialog is open, mostly that one.
QWidget *someWindow() {
    if (QWidget *popup = QApplication::activePopupWidget(); popup != nullptr && !oneIn(5)) return popup;
    if (QWidget *dialog = QApplication::activeModalWidget(); dialog != nullptr && !oneIn(8)) return dialog;
    QWidgetList shown;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible() && window->windowHandle() != nullptr) shown << window;
    return shown.isEmpty() ? nullptr : shown[static_cast<qsizetype>(below(static_cast<std::uint64_t>(shown.size())))];
}

QPoint somePlace(const QWidget *window) {
    const QWidgetList parts = window->findChildren<QWidget *>();
    const QWidget *part =
        parts.isEmpty() ? window : parts[static_cast<qsizetype>(below(static_cast<std::uint64_t>(parts.size())))];
    if (part->window() != window || !part->isVisible() || oneIn(3)) part = window;
    const QPoint inside(static_cast<int>(below(static_cast<std::uint64_t>(std::max(part->width(), 1)))),
                        static_cast<int>(below(static_cast<std::uint64_t>(std::max(part->height(), 1)))));
    return part->mapTo(window, inside);
}

void clickAnywhere() {
    QWidget *widget = someWindow();
    if (widget == nullptr || widget->windowHandle() == nullptr) return;
    const Qt::MouseButton button = oneIn(5) ? Qt::RightButton : oneIn(12) ? Qt::MiddleButton : Qt::LeftButton;
    const QPoint place = somePlace(widget);
    LOG("clicks %s at %d, %d, button %d", widget->metaObject()->className(), place.x(), place.y(), button);
    const QPointer<QWindow> window = widget->windowHandle();
    click(window, place, button);
    if (window != nullptr && oneIn(4)) click(window, place, button);
}

void dragAnywhere() {
    QWidget *widget = someWindow();
    if (widget == nullptr || widget->windowHandle() == nullptr) return;
    const QPointer<QWindow> window = widget->windowHandle();
    const QPoint from = somePlace(widget), to = somePlace(widget);
    LOG("drags in %s from %d, %d to %d, %d", widget->metaObject()->className(), from.x(), from.y(), to.x(), to.y());
    mouse(window, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    for (int step = 1; step <= 4; step++)
        if (window != nullptr)
            mouse(window, QEvent::MouseMove, from + (to - from) * step / 4, Qt::NoButton, Qt::LeftButton);
    if (window != nullptr) mouse(window, QEvent::MouseButtonRelease, to, Qt::LeftButton, {});
}

// The tree's entry of an item that is on screen or can be.
QTreeWidgetItem *someEntry(bool programs) {
    std::vector<ItemId> ids;
    for (const ItemEntry &item : storeListItems())
        if (treeEntryOf(item.id) != nullptr && (!programs || item.kind == kind::program)) ids.push_back(item.id);
    return ids.empty() ? nullptr : treeEntryOf(oneOf(ids));
}

void clickEntry(QTreeWidgetItem *entry) {
    if (entry == nullptr || QApplication::activeModalWidget() != nullptr) return;
    treeView->scrollToItem(entry);
    const QRect row = treeView->visualItemRect(entry);
    LOG("clicks the entry %s", qPrintable(entry->text(0)));
    click(mainWindow->windowHandle(),
          treeView->viewport()->mapTo(mainWindow, QPoint(row.left() + 12, row.center().y())));
}

void selectEntry() { clickEntry(someEntry(oneIn(2))); }

void command(CommandId id) {
    QAction *action = commandAction(id);
    if (action == nullptr || !action->isEnabled() || QApplication::activeModalWidget() != nullptr) return;
    LOG("command %d, %s", static_cast<int>(id), qPrintable(action->text()));
    action->trigger();
}

void anyCommand() {
    const Command &row = oneOf(commandTable());
    if (row.id != CommandId::exit && row.id != CommandId::exitFromTray) command(row.id);
}

void runProgram() {
    if (alive && oneIn(2)) clickEntry(someEntry(true));
    if (alive) command(CommandId::emulate);
}

// What a run is stepped through with, pressed a few times, since one that has just begun stops a little later.
void debugProgram() {
    constexpr auto commands = std::to_array(
        {CommandId::debugGoOn, CommandId::debugPause, CommandId::debugStep, CommandId::debugStepOver,
         CommandId::debugStepOut, CommandId::debugNextLine, CommandId::debugToCaret, CommandId::debugBackStep,
         CommandId::debugBackBreakpoint, CommandId::debugBackChange, CommandId::debugNewRoad, CommandId::breakpoint,
         CommandId::paneProfile, CommandId::besideProgram});
    if (alive && oneIn(6)) clickEntry(someEntry(true));
    for (std::uint64_t presses = 1 + below(4); presses > 0 && alive; presses--) {
        command(oneOf(commands));
        QTest::qWait(static_cast<int>(below(20)));
    }
}

void sendItem() {
    if (oneIn(2)) clickEntry(someEntry(oneIn(2)));
    if (alive) command(oneOf(std::to_array({CommandId::transmit, CommandId::queue, CommandId::transmitQueue})));
}

void undo() {
    LOG("undo or redo");
    if (oneIn(2) && QApplication::activeModalWidget() == nullptr) treeView->setFocus();
    pressKey(oneIn(3) ? Qt::Key_Y : Qt::Key_Z, Qt::ControlModifier);
}

void dropSamples() {
    QMimeData data;
    const char *const names[] = {"games.cat", "plots.cas", "maths.fxi", "pictures.cat", "values.cas", "README.md"};
    const std::string path = theMonkey.scratch + "samples/" + oneOf(names);
    LOG("drops %s", path.c_str());
    data.setUrls({QUrl::fromLocalFile(toQt(path))});
    const QPoint place(200, 200);
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(mainWindow, &enter);
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(mainWindow, &drop);
}

void changeSettings() {
    const bool algebra = oneIn(3);
    LOG("settings: %s", algebra ? "algebra" : "cfx");
    theMonkey.partner->algebra = algebra;
    settingsSetValue(setting::comPort, theMonkey.scratch + "port");
    settingsSetValue(setting::linkType, algebra ? "algebra" : "cfx");
    for (const char *key : {setting::haltOnError, setting::displayDebug, setting::fullscreen, setting::fullSpeed,
                            setting::fillListsMatrices, setting::syntaxHighlighting, setting::autoCorrect})
        settingsSetInt(key, oneIn(2) ? 1 : 0);
    if (linkSettingsChanged != nullptr) linkSettingsChanged();
}

void turnLine() {
    LOG("the calculator turns to something else");
    theMonkey.partner->turn = true;
}

void rest() {
    const int pause = 1 + static_cast<int>(below(oneIn(10) ? 300 : 30));
    LOG("rests for %d ms", pause);
    QTest::qWait(pause);
}

void changeWindow() {
    LOG("resizes");
    if (oneIn(4)) mainWindow->showMinimized();
    if (oneIn(2)) mainWindow->showNormal();
    mainWindow->resize(300 + static_cast<int>(below(700)), 200 + static_cast<int>(below(500)));
    mainWindow->activateWindow();
}

void endProgram() {
    if (oneIn(3)) {
        LOG("ends by a signal");
        std::raise(SIGTERM);
    } else if (oneIn(2)) {
        LOG("closes the window");
        mainWindow->close();
    } else {
        command(CommandId::exit);
    }
}

struct Action {
    unsigned weight;
    void (*perform)();
};
constexpr Action actions[] = {{20, anyKey},    {20, clickAnywhere}, {8, dragAnywhere}, {12, selectEntry},
                              {8, anyCommand}, {6, typeText},       {8, runProgram},   {8, debugProgram},
                              {6, sendItem},   {4, undo},           {3, dropSamples},  {1, changeSettings},
                              {3, turnLine},   {4, rest},           {1, changeWindow}};

void anyAction() {
    std::uint64_t total = 0;
    for (const Action &action : actions) total += action.weight;
    std::uint64_t roll = below(total);
    for (const Action &action : actions) {
        if (roll < action.weight) return action.perform();
        roll -= action.weight;
    }
}

// Never by random keys, which could reach files of the user's: cancelled, or answered with a file or a library of the
// scratch folder.
void answerFileDialog(QFileDialog *dialog) {
    const bool opens = dialog->acceptMode() == QFileDialog::AcceptOpen;
    if (oneIn(3)) {
        LOG("cancels the file dialog");
        return dialog->reject();
    }
    const char *const names[] = {"samples/games.cat", "samples/values.cat", "samples/pictures.fxi"};
    std::string path = theMonkey.scratch + (opens ? oneOf(names) : "out/file" + std::to_string(below(4)));
    const std::string other = theMonkey.scratch + "other" + std::to_string(below(3));
    std::filesystem::create_directory(other);
    if (dialog->fileMode() == QFileDialog::Directory) path = other;
    if (dialog->nameFilters().join(QChar()).contains(QLatin1String("storage.dat"))) path = other + "/storage.dat";
    LOG("file dialog: %s", path.c_str());
    dialog->selectFile(toQt(path));
    static_cast<QDialog *>(dialog)->accept();
}

void answerDialog(QWidget *dialog) {
    QList<QPushButton *> buttons;
    for (QPushButton *button : dialog->findChildren<QPushButton *>())
        if (button->isVisible() && button->isEnabled()) buttons << button;
    if (buttons.isEmpty() || oneIn(4)) {
        const int key = oneIn(2) ? Qt::Key_Return : Qt::Key_Escape;
        LOG("answers %s by key %#x", dialog->metaObject()->className(), static_cast<unsigned>(key));
        return pressKey(key, {});
    }
    QPushButton *button = buttons[static_cast<qsizetype>(below(static_cast<std::uint64_t>(buttons.size())))];
    LOG("answers %s by %s", dialog->metaObject()->className(), qPrintable(button->text()));
    clickCentre(button);
}

void act() {
    QWidget *dialog = QApplication::activeModalWidget();
    if (auto *files = qobject_cast<QFileDialog *>(dialog)) return answerFileDialog(files);
    const bool overFiles = dialog != nullptr && qobject_cast<QFileDialog *>(dialog->parentWidget()) != nullptr;
    if (dialog != nullptr && (overFiles || !alive || oneIn(2))) return answerDialog(dialog);
    if (!alive) return;
    const std::uint64_t age = theMonkey.actions - lifeBegan;
    if (allDone() || age > actionsOfLife + patienceOfEnd) {
        LOG("ends by a signal");
        std::raise(SIGTERM);
    } else if (age > 10 && (oneIn(actionsOfLife) || (age > actionsOfLife && oneIn(4)))) {
        endProgram();
    } else {
        anyAction();
    }
    // The offscreen platform has no window manager that would do it.
    if (alive && QApplication::activeModalWidget() == nullptr && QGuiApplication::focusWindow() == nullptr)
        mainWindow->activateWindow();
}

void check() {
    if (!alive || shuttingDown() || QApplication::activeModalWidget() != nullptr || actingLevel > 1) return;
    if (theMonkey.actions % actionsBetweenChecks == 0) checkTree();
    if (theMonkey.actions % actionsBetweenFileChecks == 0) checkFile(theMonkey.scratch + "copy/");
}

// Actions call for events themselves: a further one begins only in a loop that a dialog or menu has opened.
void tick() {
    chance.seed(theMonkey.seed * 1000003 + theMonkey.actions);
    QTimer::singleShot(oneIn(30) ? 60 : 1, qApp, tick);
    const int level = QThread::currentThread()->loopLevel();
    if (shuttingDown() || (acting && level <= actingLevel)) return;
    const bool outerActing = acting;
    const int outerLevel = actingLevel;
    acting = true;
    actingLevel = level;
    theMonkey.actions++;
    act();
    check();
    acting = outerActing;
    actingLevel = outerLevel;
}

}  // namespace

void beginActing() {
    startedAt = tickCount();
    QTimer::singleShot(0, qApp, tick);
}

void beginLife() {
    alive = true;
    lifeBegan = theMonkey.actions;
}

void endLife() { alive = false; }

bool allDone() {
    if (theMonkey.actionLimit != 0 && theMonkey.actions >= theMonkey.actionLimit) return true;
    return theMonkey.secondsLimit != 0 && tickCount() - startedAt >= theMonkey.secondsLimit * 1000;
}

}  // namespace monkey
