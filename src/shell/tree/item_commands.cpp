#include "shell/tree/item_commands.h"

#include <QTreeWidget>
#include <algorithm>

#include "calculator/charset.h"
#include "calculator/program_info.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/delete_question.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/label_edit.h"
#include "shell/tree/selection.h"
#include "shell/tree/several.h"
#include "shell/views/item_views.h"
#include "store/item_store.h"
#include "store/undo/undo.h"
#include "telling/tell_user.h"

namespace numalink {

void newFolder() {
    NewItem folder;
    folder.name = storeFreeName(calculatorName(wording(Text::newItemName)), rootId, kind::folder);
    folder.kind = kind::folder;
    folder.flags = folderOpenFlag;
    folder.whenTaken = NameTaken::nextFreeName;
    const ItemId id = storeAddItem(folder);
    if (id == noItem) return;
    refreshTree();
    startLabelEdit(id);
}

namespace {

// The selected item if that is a folder that is still there, otherwise the folder of programs, made if need be.
ItemId folderForProgram() {
    const std::optional<ItemEntry> selected = storeReadEntry(selectedItemId());
    return selected && isFolderKind(selected->kind) ? selected->id : storeStandardFolder(kind::programsFolder);
}

}  // namespace

void newProgram() {
    if (!leaveCurrentView()) return;  // ahead of the folder, which whoever stays on the view doesn't want
    const ItemId parent = folderForProgram();
    if (parent == noItem) return showSelectedAgain();
    NewItem program;
    program.name =
        storeFreeName(calculatorName(wording(Text::newItemName)).substr(0, programNameLimit), parent, kind::program);
    program.parent = parent;
    program.kind = kind::program;
    program.head = encodeProgramInfo({.imageLength = 1, .name = program.name, .password = {}});
    program.data = {':', 0xFF};
    program.whenTaken = NameTaken::nextFreeName;
    const ItemId id = storeAddItem(program);
    refreshTree();  // also where only the folder was made
    if (id == noItem) return showSelectedAgain();
    if (QTreeWidgetItem *folder = treeEntryOf(parent)) folder->setExpanded(true);
    selectItem(id);
    startLabelEdit(id, AfterEnter::view);
}

void renameSelectedItem() { startLabelEdit(selectedItemId()); }

namespace {

// The entry that is selected once these have gone: the next one that stays, else the one before, in the order seen.
ItemId followerOf(const std::vector<ItemId> &ids) {
    const auto goes = [&](const QTreeWidgetItem *entry) {
        for (; entry != nullptr; entry = entry->parent())
            if (std::ranges::find(ids, idOfEntry(entry)) != ids.end()) return true;
        return false;
    };
    const QTreeWidgetItem *next = treeEntryOf(ids.back());
    while (next != nullptr && goes(next)) next = treeView->itemBelow(next);
    if (next == nullptr) next = treeEntryOf(ids.back());
    while (next != nullptr && goes(next)) next = treeView->itemAbove(next);
    return idOfEntry(next);
}

void deleteSeveral(const std::vector<ItemId> &ids) {
    if (!askDeleteSeveral(ids)) return;
    const bool viewGoes = std::ranges::find(ids, viewItemId) != ids.end();
    if (!viewGoes && !leaveCurrentView()) return;
    const ItemId follower = followerOf(ids);
    {
        const UndoGroup group(UndoAct::deletion, stepNameOf(ids));
        if (!storeDeleteItems(ids)) return showSelectedAgain();
    }
    if (viewGoes) dropCurrentView();
    refreshTree();
    selectItem(follower);
    treeView->setFocus();
}

}  // namespace

void deleteWithQuestion() {
    if (severalSelected()) {
        const std::vector<ItemId> ids = selectedOutermost();
        if (ids.size() > 1) return deleteSeveral(ids);
        if (!selectItem(ids.front())) return;  // a folder with what it holds
    }
    const std::optional<ItemEntry> item = storeReadEntry(selectedItemId());
    if (!item || !askDelete(*item)) return;
    if (viewItemId != item->id && !leaveCurrentView()) return;
    QTreeWidgetItem *entry = treeEntryOf(item->id);
    const QTreeWidgetItem *next = nullptr;
    if (entry != nullptr) {
        const QTreeWidgetItem *parent = entry->parent() != nullptr ? entry->parent() : treeView->invisibleRootItem();
        const int place = parent->indexOfChild(entry);
        next = place + 1 < parent->childCount() ? parent->child(place + 1) : parent->child(place - 1);
        if (next == nullptr) next = entry->parent();
    }
    const ItemId follower = next == nullptr ? noItem : next->data(0, Qt::UserRole).toUInt();
    if (!storeDelete(item->id)) {
        showSelectedAgain();
        return;
    }
    if (viewItemId == item->id) dropCurrentView();
    refreshTree();
    selectItem(follower);
    treeView->setFocus();
}

}  // namespace numalink
