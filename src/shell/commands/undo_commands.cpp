#include "shell/commands/undo_commands.h"

#include <QPlainTextEdit>
#include <QTreeWidget>
#include <algorithm>

#include "calculator/charset.h"
#include "emulator/machine/machine.h"
#include "shell/editor/program_view.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/selection.h"
#include "shell/views/item_views.h"
#include "store/item_store.h"
#include "store/undo/undo.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct ActRow {
    UndoAct act;
    Text menu;    // with the name in it
    Text status;  // once it is taken back
};
constexpr ActRow actRows[] = {
    {UndoAct::deletion, Text::undoDeletion, Text::itemsCameBack},
    {UndoAct::replacement, Text::undoReplacement, Text::itemsCameBack},
    {UndoAct::edit, Text::undoEdit, Text::takenBack},
    {UndoAct::rename, Text::undoRename, Text::takenBack},
    {UndoAct::move, Text::undoMove, Text::takenBack},
    {UndoAct::import, Text::undoImport, Text::takenBack},
};

const ActRow &rowOf(UndoAct act) { return *std::ranges::find(actRows, act, &ActRow::act); }

bool isTyping() { return programEdit->isVisible() && programEdit->hasFocus(); }

// An edit that becomes a step as soon as its view is left.
bool viewIsEdited() { return isTextKind(viewKind) && programChanged(); }

bool canUndo() { return viewIsEdited() || storeUndoOffer(); }

// The view is left first, as ahead of a deletion: it may be of an item that goes.
void changeLibrary(bool (*change)(TakenBack &)) {
    if (!leaveCurrentView()) return;
    TakenBack done;
    const bool changed = change(done);
    refreshTree();
    const ItemId shown = changed && done.shown != noItem ? done.shown : selectedItemId();
    if (shown != noItem) selectItem(shown);
    const std::vector<std::string> words = {utf8FromCalculator(done.step.name), std::to_string(done.step.count)};
    if (done.changedSince) statusLine(StatusPart::item, Text::changedSince);
    if (changed && change == storeUndo) statusLine(StatusPart::item, rowOf(done.step.act).status, words);
    if (changed && change == storeRedo) userInterface.statusText(StatusPart::item, Text::none, "");
    treeView->setFocus();
}

}  // namespace

void undoLast() {
    if (emulatorRunning) return;
    if (isTyping()) return undoInProgram();
    if (!canUndo()) return statusLine(StatusPart::item, Text::nothingToUndo);
    changeLibrary(storeUndo);
}

void redoLast() {
    if (emulatorRunning) return;
    if (isTyping()) return redoInProgram();
    if (!storeCanRedo()) return statusLine(StatusPart::item, Text::nothingToRedo);
    changeLibrary(storeRedo);
}

bool undoOffered() { return isTyping() || canUndo(); }
bool redoOffered() { return isTyping() || storeCanRedo(); }

QString undoWords() {
    if (isTyping() || !canUndo()) return textOf(Text::undo);
    auto offer = storeUndoOffer();
    if (const auto viewed = viewIsEdited() ? storeReadEntry(viewItemId) : std::nullopt)
        offer = UndoOffer{.act = UndoAct::edit, .name = viewed->name};
    if (!offer) return textOf(Text::undo);
    QString name = nameToQt(offer->name);
    name.replace(QLatin1Char('&'), QLatin1String("&&"));
    return textOf(rowOf(offer->act).menu, {name.toStdString()});
}

}  // namespace numalink
