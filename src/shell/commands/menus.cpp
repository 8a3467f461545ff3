#include "shell/commands/menus.h"

#include <QAction>
#include <QActionGroup>
#include <QIcon>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QToolBar>
#include <algorithm>
#include <map>

#include "shell/commands/command_handler.h"
#include "shell/parts/command_states.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "shell/run/emulator_place.h"
#include "shell/run/emulator_window.h"
#include "shell/tree/selection.h"
#include "shell/workbench/stop_view.h"

namespace numalink {

namespace {

struct Menus {
    std::map<CommandId, QAction *> actions;
    std::map<MenuPosition, QMenu *> menus;
};
Menus state;

// "Transmit" out of "&Transmit", so that a button shows no stray mark.
QString withoutMnemonic(QString text) { return text.remove(QLatin1Char('&')); }

// Keys go to the commands, or, while an emulated program runs, to it; beside the program, to where the focus is.
bool keyIsCommand(const Command &row) {
    return row.keyOfText || row.keyWhileRunning || !emulatorShown() || besideProgram();
}

void giveKeys(const Command &row) {
    QAction *action = state.actions[row.id];
    if (!keyIsCommand(row)) return action->setShortcuts(QList<QKeySequence>());
    if (row.standardKey != QKeySequence::UnknownKey) return action->setShortcuts(row.standardKey);
    action->setShortcuts(QKeySequence::listFromString(QString::fromLatin1(row.shortcut)));
}

const MenuRow &menuRow(MenuPosition menu) { return *std::ranges::find(menuTable(), menu, &MenuRow::menu); }

bool isEnabled(const MenuRow &row) { return row.enabled == nullptr || row.enabled(); }

bool isEnabled(const Command &row) {
    if (!isEnabled(menuRow(row.menu))) return false;
    if (row.enabledFor != nullptr && severalSelected()) {
        if (row.enabledForSeveral == nullptr || !row.enabledForSeveral(selectedKinds())) return false;
    } else if (row.enabledFor != nullptr && !row.enabledFor(selectedKind())) {
        return false;
    }
    return row.enabled == nullptr || row.enabled();
}

void showState(const Command &row, bool menuOpen) {
    QAction *action = state.actions[row.id];
    action->setEnabled(isEnabled(row) && (!menuOpen || row.offered == nullptr || row.offered()));
    const bool present = row.present == nullptr || row.present();
    action->setVisible(present);
    if (row.checked != nullptr) action->setChecked(row.checked());
    if (menuOpen && present && row.words != nullptr) action->setText(row.words());
}

void showMenuStates(MenuPosition menu, bool menuOpen) {
    for (const Command &row : commandTable())
        if (row.menu == menu) showState(row, menuOpen);
}

void showStates() {
    for (const MenuRow &row : menuTable()) menuAt(row.menu)->setEnabled(isEnabled(row));
    for (const Command &row : commandTable()) {
        showState(row, menuAt(row.menu)->isVisible());
        giveKeys(row);
    }
    for (const ToolbarButton &button : toolbarTable()) {
        if (button.isOther == nullptr) continue;
        state.actions[button.id]->setIconText(
            withoutMnemonic(textOf(button.isOther() ? button.otherText : button.text)));
    }
}

QMenu *makeMenu(const MenuRow &row) {
    if (row.within) return menuAt(*row.within)->addMenu(textOf(row.text));
    if (row.text != Text::none) return mainWindow->menuBar()->addMenu(textOf(row.text));
    return new QMenu(row.ofNoWindow ? nullptr : mainWindow);
}

void addMenu(const MenuRow &row) {
    QMenu *menu = makeMenu(row);
    state.menus[row.menu] = menu;
    if (row.oneChecked) new QActionGroup(menu);
    QObject::connect(menu, &QMenu::aboutToShow, menu, [where = row.menu] { showMenuStates(where, true); });
    QObject::connect(menu, &QMenu::aboutToHide, menu, [where = row.menu] { showMenuStates(where, false); });
}

void addAction(const Command &row) {
    QMenu *menu = menuAt(row.menu);
    if (row.separatorAhead) menu->addSeparator();
    QAction *action = menu->addAction(row.text == Text::none ? QString::fromLatin1(row.label) : textOf(row.text));
    state.actions[row.id] = action;
    if (row.keyOfText) action->setShortcutContext(Qt::WidgetShortcut);
    action->setAutoRepeat(row.repeats);
    if (row.tip != Text::none) {
        action->setStatusTip(textOf(row.tip));
        action->setToolTip(textOf(row.tip));
    }
    action->setCheckable(row.checked != nullptr);
    if (auto *oneChecked = menu->findChild<QActionGroup *>(QString(), Qt::FindDirectChildrenOnly))
        oneChecked->addAction(action);
    if (row.onTreeGround) treeGroundMenu->addAction(action);
    QObject::connect(action, &QAction::triggered, mainWindow, [id = row.id] { handleCommand(id); });
}

// A button with two words keeps the width of the longer one.
void keepWidth(QAction *action, const QString &otherWord) {
    QWidget *button = toolbar->widgetForAction(action);
    const QString word = action->iconText();
    const int width = button->sizeHint().width();
    action->setIconText(otherWord);
    button->setMinimumWidth(std::max(width, button->sizeHint().width()));
    action->setIconText(word);
}

}  // namespace

void buildMenus() {
    QMenuBar *bar = mainWindow->menuBar();
    for (const MenuRow &row : menuTable())
        if (!row.within) addMenu(row);
    itemMenu = menuAt(MenuPosition::item);
    programMenu = menuAt(MenuPosition::program);
    treeGroundMenu = new QMenu(mainWindow);
    for (const Command &row : commandTable()) {
        // A menu within another stands where its first entry does.
        if (menuAt(row.menu) == nullptr) addMenu(menuRow(row.menu));
        addAction(row);
    }
    showStates();
    commandStatesChanged = showStates;
    auto *openFirst = new QShortcut(QKeySequence(Qt::Key_F10), mainWindow);
    QObject::connect(openFirst, &QShortcut::activated, bar, [bar] { bar->setActiveAction(bar->actions().first()); });
}

void buildToolbar() {
    for (const ToolbarButton &button : toolbarTable()) {
        QAction *action = state.actions[button.id];
        action->setIcon(QIcon(QStringLiteral(":/images/%1.svg").arg(QString::fromLatin1(button.image))));
        action->setIconText(withoutMnemonic(textOf(button.text)));
        toolbar->addAction(action);
        if (button.isOther != nullptr) keepWidth(action, withoutMnemonic(textOf(button.otherText)));
    }
    fitWindowToToolbar();
}

void buildDebugBar() {
    constexpr int imageSize = 16;
    QToolBar *bar = debugBar();
    bar->setIconSize(QSize(imageSize, imageSize) * textScale());
    QAction *line = bar->actions().first();
    for (const ToolbarButton &button : debugBarTable()) {
        QAction *action = state.actions[button.id];
        action->setIcon(QIcon(QStringLiteral(":/images/%1.svg").arg(QString::fromLatin1(button.image))));
        action->setIconVisibleInMenu(false);
        bar->insertAction(line, action);
    }
}

void forgetMenus() {
    commandStatesChanged = [] {};
    for (const MenuRow &row : menuTable())
        if (row.ofNoWindow) delete menuAt(row.menu);
    state = {};
    itemMenu = programMenu = treeGroundMenu = nullptr;
}

QAction *commandAction(CommandId id) {
    const auto found = state.actions.find(id);
    return found == state.actions.end() ? nullptr : found->second;
}

QMenu *menuAt(MenuPosition position) {
    const auto found = state.menus.find(position);
    return found == state.menus.end() ? nullptr : found->second;
}

}  // namespace numalink
