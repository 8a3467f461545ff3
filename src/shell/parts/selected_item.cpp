#include "shell/parts/selected_item.h"

#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

#include "shell/parts/main_widgets.h"

namespace numalink {

ItemId idOfEntry(const QTreeWidgetItem *entry) {
    return entry == nullptr ? noItem : entry->data(0, Qt::UserRole).toUInt();
}

// Qt makes the first entry current when the tree gets the focus, without selecting it: that is no selection.
QTreeWidgetItem *selectedEntry() {
    QTreeWidgetItem *entry = treeView != nullptr ? treeView->currentItem() : nullptr;
    return entry != nullptr && entry->isSelected() ? entry : nullptr;
}

namespace {

bool isSeen(const QTreeWidgetItem *entry) {
    if (entry->isHidden()) return false;
    for (const QTreeWidgetItem *above = entry->parent(); above != nullptr; above = above->parent())
        if (!above->isExpanded() || above->isHidden()) return false;
    return true;
}

bool liesInSelected(const QTreeWidgetItem *entry) {
    for (const QTreeWidgetItem *above = entry->parent(); above != nullptr; above = above->parent())
        if (above->isSelected()) return true;
    return false;
}

template <typename Fits>
std::vector<ItemId> selectedThat(Fits fits) {
    std::vector<ItemId> ids;
    if (treeView == nullptr) return ids;
    for (QTreeWidgetItemIterator entry(treeView, QTreeWidgetItemIterator::Selected); *entry != nullptr; ++entry)
        if ((*entry == treeView->currentItem() || isSeen(*entry)) && fits(*entry)) ids.push_back(idOfEntry(*entry));
    return ids;
}

}  // namespace

std::vector<ItemId> selectedItemIds() {
    return selectedThat([](const QTreeWidgetItem *) { return true; });
}

std::vector<ItemId> selectedOutermost() {
    return selectedThat([](const QTreeWidgetItem *entry) { return !liesInSelected(entry); });
}

ItemId selectedItemId() { return idOfEntry(selectedEntry()); }

}  // namespace numalink
