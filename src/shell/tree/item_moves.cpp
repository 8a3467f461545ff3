#include "shell/tree/item_moves.h"

#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <optional>

#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/selection.h"
#include "shell/views/item_views.h"
#include "store/items/arrivals.h"
#include "store/undo/undo.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

enum class TakenAnswer { cancel, keepBoth, replace };

// Another item of the name stands in the folder.
TakenAnswer askNameTaken(const ItemEntry &moved, bool mayReplace) {
    QMessageBox box(QMessageBox::Question, boxTitle(false),
                    textOf(Text::nameTakenThere, {utf8FromCalculator(moved.name)}), QMessageBox::NoButton, mainWindow);
    box.setTextFormat(Qt::PlainText);
    QPushButton *replace = mayReplace ? box.addButton(textOf(Text::replace), QMessageBox::DestructiveRole) : nullptr;
    QPushButton *keepBoth = box.addButton(textOf(Text::keepBoth), QMessageBox::AcceptRole);
    QPushButton *cancel = box.addButton(textOf(Text::cancel), QMessageBox::RejectRole);
    box.setDefaultButton(keepBoth);
    box.setEscapeButton(cancel);
    runDialog(box);
    if (replace != nullptr && box.clickedButton() == replace) return TakenAnswer::replace;
    return box.clickedButton() == keepBoth ? TakenAnswer::keepBoth : TakenAnswer::cancel;
}

// By the road that several take. The name that it has there; nothing when it stays.
std::optional<std::string> moveItem(const ItemEntry &moved, ItemId folder) {
    std::vector<Arrival> arrivals = planArrivals({{moved.id, folder, {}, 0, {}}});
    if (arrivals.empty()) return std::nullopt;
    Arrival &arrival = arrivals.front();
    if (anyTaken(arrivals)) {
        const TakenAnswer answer = askNameTaken(moved, true);
        if (answer == TakenAnswer::cancel) return std::nullopt;
        arrival.choice = answer == TakenAnswer::replace ? ArrivalChoice::replace : ArrivalChoice::keepBoth;
    }
    const UndoGroup group(UndoAct::move);
    ArrivalCounts counts;
    if (!placeArrivals(arrivals, counts)) return std::nullopt;
    const auto placed = storeReadEntry(moved.id);
    return placed ? placed->name : moved.name;
}

std::optional<std::string> moveFolder(const ItemEntry &moved, ItemId folder) {
    const bool isTaken = storeItemExists(moved.name, folder);
    if (isTaken && askNameTaken(moved, false) == TakenAnswer::cancel) return std::nullopt;
    const UndoGroup group(UndoAct::move);
    const std::string name = isTaken ? storeFreeName(moved.name, folder, moved.kind) : moved.name;
    if (!storeMove(moved.id, folder)) return std::nullopt;
    return name != moved.name && !storeRename(moved.id, name) ? moved.name : name;
}

}  // namespace

void moveDropped(ItemId item, ItemId folder) {
    const std::optional<ItemEntry> moved = storeReadEntry(item);
    if (!moved || moved->parent == folder || !leaveCurrentView()) return;
    const auto name = isFolderKind(moved->kind) ? moveFolder(*moved, folder) : moveItem(*moved, folder);
    if (name) refreshTree();
    selectItem(item);
    showInTree(item);
    if (name && *name != moved->name)
        statusLine(StatusPart::item, Text::itemStoredAs, {utf8FromCalculator(moved->name), utf8FromCalculator(*name)});
}

}  // namespace numalink
