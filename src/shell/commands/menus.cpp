#include "shell/commands/menus.h"

#include <QAction>
#include <QIcon>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QToolBar>
#include <algorithm>
#include <array>
#include <map>

#include "shell/commands/command_handler.h"
#include "shell/commands/command_table.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

namespace {

std::map<int, QAction *> actions;
std::array<QMenu *, menuCount> menus;

void addAction(const Command &row) {
    QMenu *menu = menus[static_cast<std::size_t>(row.menu)];
    if (row.separatorAhead) menu->addSeparator();
    QAction *action = menu->addAction(textOf(row.text));
    action->setShortcut(QKeySequence(QString::fromLatin1(row.shortcut)));
    action->setAutoRepeat(false);
    action->setStatusTip(textOf(row.tip));
    action->setToolTip(textOf(row.tip));
    action->setEnabled(row.working && row.enabledAtStart);
    QObject::connect(action, &QAction::triggered, mainWindow, [id = row.id] { handleCommand(id); });
    actions[row.id] = action;
}

// "Transmit" out of "&Transmit", so that a button shows no stray mark.
QString withoutMnemonic(QString text) { return text.remove(QLatin1Char('&')); }

// A button with two words keeps the width of the longer one.
void keepWidth(QAction *action, const QString &otherWord) {
    QWidget *button = toolbar->widgetForAction(action);
    const QString word = action->iconText();
    const int width = button->sizeHint().width();
    action->setIconText(otherWord);
    button->setMinimumWidth(std::max(width, button->sizeHint().width()));
    action->setIconText(word);
}

struct KindState {
    int commandId;
    bool (*enabledFor)(ItemKind itemKind);
};

bool anyItem(ItemKind itemKind) { return itemKind != kind::none; }
bool transmittable(ItemKind itemKind) { return anyItem(itemKind) && !isScreenKind(itemKind); }
bool drawnAsBitmap(ItemKind itemKind) { return isScreenKind(itemKind) || itemKind == kind::picture; }
bool isProgram(ItemKind itemKind) { return itemKind == kind::program; }

// What the kind of the selected item enables.
constexpr KindState kindStates[] = {
    {command::rename, anyItem},         {command::remove, anyItem},           {command::queue, transmittable},
    {command::transmit, transmittable}, {command::saveBitmap, drawnAsBitmap}, {command::emulate, isProgram},
    {command::password, isProgram},
};

}  // namespace

void buildMenus() {
    QMenuBar *bar = mainWindow->menuBar();
    for (std::size_t position = 0; position < menus.size(); position++)
        menus[position] = bar->addMenu(textOf(menuTexts[position]));
    for (const Command &row : commandTable()) addAction(row);
    actions[command::hideTree]->setCheckable(true);
    itemMenu = menus[static_cast<std::size_t>(MenuPosition::item)];
    menus[static_cast<std::size_t>(MenuPosition::emulator)]->setEnabled(false);
    auto *openFirst = new QShortcut(QKeySequence(Qt::Key_F10), mainWindow);
    QObject::connect(openFirst, &QShortcut::activated, bar, [bar] { bar->setActiveAction(bar->actions().first()); });
}

void buildToolbar() {
    for (const ToolbarButton &button : toolbarTable()) {
        QAction *action = actions[button.commandId];
        action->setIcon(QIcon(QStringLiteral(":/images/%1.svg").arg(QString::fromLatin1(button.image))));
        action->setIconText(withoutMnemonic(textOf(button.text)));
        toolbar->addAction(action);
    }
    keepWidth(actions[command::emulate], textOf(Text::editorButton));
    fitWindowToToolbar();
}

void forgetMenus() {
    actions.clear();
    menus.fill(nullptr);
    itemMenu = nullptr;
}

QAction *commandAction(int id) {
    const auto found = actions.find(id);
    return found == actions.end() ? nullptr : found->second;
}

QMenu *menuAt(int position) { return menus[static_cast<std::size_t>(position)]; }

void setCommandEnabled(int id, bool enabled) {
    const Command *row = findCommand(id);
    QAction *action = commandAction(id);
    if (row != nullptr && action != nullptr) action->setEnabled(enabled && row->working);
}

bool commandEnabled(int id) {
    const QAction *action = commandAction(id);
    return action != nullptr && action->isEnabled();
}

void setMenuStates(ItemKind selected) {
    for (const KindState &state : kindStates) setCommandEnabled(state.commandId, state.enabledFor(selected));
}

void setEditMenuEnabled(bool enabled) {
    for (const int id : {command::find, command::findAgain, command::refresh}) setCommandEnabled(id, enabled);
}

void setShortcutsEnabled(bool enabled) {
    for (const Command &row : commandTable()) {
        if (row.id == command::emulate) continue;  // its key stops a run as well
        const QString keys = enabled ? QString::fromLatin1(row.shortcut) : QString();
        if (QAction *action = commandAction(row.id)) action->setShortcut(QKeySequence(keys));
    }
}

}  // namespace numalink
