#include "shell/tree/several.h"

#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <algorithm>
#include <set>

#include "exchange/listed_names.h"
#include "search/search.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/selection.h"
#include "shell/tree/tree_rules.h"
#include "shell/views/item_views.h"
#include "store/items/arrivals.h"
#include "store/undo/undo.h"

namespace numalink {

namespace {

ItemId anchor = noItem;  // where a range begins: what was selected last other than by a range

// What can be seen, in order.
std::vector<ItemId> shownIds() {
    std::vector<ItemId> ids;
    QTreeWidgetItem *entry = treeView->topLevelItem(0);
    if (entry != nullptr && entry->isHidden()) entry = treeView->itemBelow(entry);
    for (; entry != nullptr; entry = treeView->itemBelow(entry)) ids.push_back(idOfEntry(entry));
    return ids;
}

bool holds(const std::vector<ItemId> &ids, ItemId id) { return std::ranges::find(ids, id) != ids.end(); }

// Where a range begins now: once one item is selected by itself, there.
ItemId anchorNow() {
    if (!severalSelected() || treeEntryOf(anchor) == nullptr) anchor = selectedItemId();
    return anchor;
}

bool goTo(ItemId current, const std::vector<ItemId> &beside) {
    if (!selectAmong(current, beside)) return false;
    treeView->scrollToItem(treeEntryOf(current));
    return true;
}

}  // namespace

void toggleAmong(ItemId id) {
    std::vector<ItemId> beside = selectedItemIds();
    if (!holds(beside, id)) {
        beside.push_back(id);
        if (goTo(id, beside)) anchor = id;
        return;
    }
    if (beside.size() < 2) return;
    std::erase(beside, id);
    const ItemId current = id == selectedItemId() ? beside.back() : selectedItemId();
    if (goTo(current, beside)) anchor = id;
}

void extendTo(ItemId id, bool keeps) {
    const std::vector<ItemId> shown = shownIds();
    const ItemId begin = anchorNow();
    const auto from = std::ranges::find(shown, begin), to = std::ranges::find(shown, id);
    if (from == shown.end() || to == shown.end()) {
        selectItem(id);
        return;
    }
    std::vector<ItemId> beside = keeps ? selectedItemIds() : std::vector<ItemId>();
    beside.insert(beside.end(), std::min(from, to), std::max(from, to) + 1);
    goTo(id, beside);
    anchor = begin;
}

void goAmong(ItemId id) {
    std::vector<ItemId> beside = selectedItemIds();
    std::erase_if(beside, [](ItemId other) { return !holds(keptSelected(), other); });
    if (goTo(id, beside)) anchor = id;
}

void toggleKept() {
    const ItemId current = selectedItemId();
    if (current == noItem) return;
    if (std::erase(keptSelected(), current) == 0) keptSelected().push_back(current);
}

void selectAllShown() {
    const std::vector<ItemId> shown = shownIds();
    if (shown.empty()) return;
    goTo(selectedItemId() == noItem ? shown.front() : selectedItemId(), shown);
}

void selectAlone() { selectItem(selectedItemId()); }

bool canMoveAll(const std::vector<ItemId> &ids, ItemId folder) {
    const auto target = storeReadEntry(folder);
    if (!target || !isFolderKind(target->kind)) return false;
    bool moves = false;
    for (const ItemId id : ids) {
        const auto entry = storeReadEntry(id);
        if (!entry || !canDrop(entry->kind, target->kind)) return false;
        moves = moves || entry->parent != folder;
    }
    return moves;
}

void moveSeveral(const std::vector<ItemId> &ids, ItemId folder) {
    if (!canMoveAll(ids, folder) || !leaveCurrentView()) return;
    const std::string where = utf8FromCalculator(storeReadEntry(folder)->name);
    std::vector<Arriving> arriving;
    for (const ItemId id : ids)
        if (const auto entry = storeReadEntry(id); entry && entry->parent != folder)
            arriving.push_back({id, folder, where, entry->parent, {}});
    std::vector<Arrival> arrivals = planArrivals(arriving);
    ArrivalsQuestion question{.rows = {arrivals.begin(), arrivals.end()}, .notes = {}, .moves = true, .accepted = true};
    if (anyTaken(arrivals)) userInterface.askArrivals(question);
    for (std::size_t i = 0; i < arrivals.size(); i++) arrivals[i].choice = question.rows[i].choice;
    const UndoGroup group(UndoAct::move, stepNameOf(ids));
    ArrivalCounts counts;
    if (question.accepted && placeArrivals(arrivals, counts)) refreshTree();
    showSelectedAgain();
}

std::vector<ItemId> itemsWithin(const std::vector<ItemId> &ids) {
    std::vector<ItemId> items;
    std::set<ItemId> taken;
    for (const ItemId id : ids) {
        const auto entry = storeReadEntry(id);
        if (!entry) continue;
        for (const ItemId item : isFolderKind(entry->kind) ? searchedItems(id) : std::vector{id})
            if (taken.insert(item).second) items.push_back(item);
    }
    return items;
}

std::string namesOfSeveral(const std::vector<ItemId> &ids) {
    std::vector<std::string> names;
    for (const ItemId id : ids)
        if (const auto entry = storeReadEntry(id)) names.push_back(utf8FromCalculator(entry->name));
    return listOfNames(names);
}

std::string stepNameOf(const std::vector<ItemId> &ids) {
    const auto first = ids.empty() ? std::nullopt : storeReadEntry(ids.front());
    return first ? first->name + " ..." : "";
}

}  // namespace numalink
