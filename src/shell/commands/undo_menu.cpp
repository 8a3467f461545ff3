#include "shell/commands/undo_menu.h"

#include <QAction>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTreeWidget>

#include "calculator/charset.h"
#include "emulator/machine/machine.h"
#include "shell/commands/command_table.h"
#include "shell/commands/menus.h"
#include "shell/editor/program_view.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/item_tree.h"
#include "shell/views/item_views.h"
#include "store/undo/undo.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

bool isTyping() { return programEdit->isVisible() && programEdit->hasFocus(); }

// The view is left first, as ahead of a deletion: it may be of an item that goes.
void changeLibrary(bool (*change)(TakenBack &)) {
    if (!leaveCurrentView()) return;
    TakenBack done;
    const bool changed = change(done);
    refreshTree();
    if (const ItemId shown = changed ? done.shown : selectedItemId(); shown != noItem) selectItem(shown);
    const std::vector<std::string> words = {utf8FromCalculator(done.step.name), std::to_string(done.step.count)};
    if (done.changedSince) statusLine(StatusPart::item, Text::changedSince);
    if (changed && change == storeUndo) statusLine(StatusPart::item, Text::itemsCameBack, words);
    if (changed && change == storeRedo) userInterface.statusText(StatusPart::item, Text::none, "");
    treeView->setFocus();
}

void undo() {
    if (emulatorRunning) return;
    if (isTyping()) return undoInProgram();
    if (!storeUndoOffer()) return statusLine(StatusPart::item, Text::nothingToUndo);
    changeLibrary(storeUndo);
}

void redo() {
    if (emulatorRunning) return;
    if (isTyping()) return redoInProgram();
    if (!storeCanRedo()) return statusLine(StatusPart::item, Text::nothingToRedo);
    changeLibrary(storeRedo);
}

QString undoWords() {
    const auto offer = storeUndoOffer();
    if (isTyping() || !offer) return textOf(Text::undo);
    QString name = QString::fromStdString(utf8FromCalculator(offer->name));
    name.replace(QLatin1Char('&'), QLatin1String("&&"));
    return textOf(offer->replacement ? Text::undoReplacement : Text::undoDeletion, {name.toStdString()});
}

}  // namespace

void buildUndoMenu() {
    QMenu *menu = menuAt(static_cast<int>(MenuPosition::edit));
    auto *undoAction = new QAction(textOf(Text::undo), menu);
    auto *redoAction = new QAction(textOf(Text::redo), menu);
    undoAction->setObjectName(QStringLiteral("undoAction"));
    redoAction->setObjectName(QStringLiteral("redoAction"));
    undoAction->setShortcut(QKeySequence::Undo);
    redoAction->setShortcuts(QKeySequence::Redo);
    QAction *first = menu->actions().value(0);
    menu->insertActions(first, {undoAction, redoAction});
    menu->insertSeparator(first);
    QObject::connect(undoAction, &QAction::triggered, menu, undo);
    QObject::connect(redoAction, &QAction::triggered, menu, redo);
    // By name while the menu is open; its keys always work, and say so when there is nothing.
    QObject::connect(menu, &QMenu::aboutToShow, menu, [undoAction, redoAction] {
        undoAction->setText(undoWords());
        undoAction->setEnabled(isTyping() || storeUndoOffer());
        redoAction->setEnabled(isTyping() || storeCanRedo());
    });
    QObject::connect(menu, &QMenu::aboutToHide, menu, [undoAction, redoAction] {
        undoAction->setEnabled(true);
        redoAction->setEnabled(true);
    });
}

}  // namespace numalink
