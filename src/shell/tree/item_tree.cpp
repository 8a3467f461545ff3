#include "shell/tree/item_tree.h"

#include <QIcon>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QTreeWidgetItem>
#include <unordered_map>
#include <unordered_set>

#include "shell/parts/kind_looks.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/tree_order.h"

namespace numalink {

namespace {

std::unordered_map<ItemId, QTreeWidgetItem *> entryOf;

constexpr int kindRole = Qt::UserRole + 1;  // the kind whose image an entry shows

QIcon treeImage(ItemKind itemKind) {
    static std::unordered_map<int, QIcon> images;
    QIcon &image = images[treeImageOfKind(itemKind)];
    if (!image.isNull()) return image;
    // The same when selected: Qt's own picture for that is a blue on the blue of the line.
    const QIcon drawn(imageOfKind(itemKind));
    for (const int scale : {1, 2, 3}) {
        const QPixmap picture = drawn.pixmap(treeView->iconSize() * scale, 1.0);
        for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected}) image.addPixmap(picture, mode);
    }
    return image;
}

// A subtree that is taken out of the tree forgets which folders are open.
void rememberExpansion(const QTreeWidgetItem *entry, std::vector<ItemId> &expanded) {
    if (entry->isExpanded()) expanded.push_back(idOfEntry(entry));
    for (int i = 0; i < entry->childCount(); i++) rememberExpansion(entry->child(i), expanded);
}

// Takes out what the library no longer holds; what still lives below such an entry goes to the root for now.
void removeGone(const TreeContent &content, std::vector<ItemId> &expanded) {
    std::unordered_set<ItemId> wanted;
    for (const TreeEntry &entry : content.entries) wanted.insert(entry.id);
    std::vector<ItemId> gone;
    for (const auto &[id, entry] : entryOf)
        if (!wanted.contains(id)) gone.push_back(id);
    for (const ItemId id : gone) {
        QTreeWidgetItem *entry = entryOf[id];
        rememberExpansion(entry, expanded);
        const QList<QTreeWidgetItem *> children = entry->takeChildren();
        treeView->addTopLevelItems(children);
        entryOf.erase(id);
        delete entry;
    }
}

// The entry of an id that folder's children stand under.
QTreeWidgetItem *holderOf(ItemId folder) {
    return folder == rootId ? treeView->invisibleRootItem() : treeEntryOf(folder);
}

void takeOut(QTreeWidgetItem *item, std::vector<ItemId> &expanded) {
    rememberExpansion(item, expanded);
    QTreeWidgetItem *holder = item->parent() != nullptr ? item->parent() : treeView->invisibleRootItem();
    holder->removeChild(item);
}

// Takes out what doesn't follow the order of its row, as few as will do: every one costs time and disturbs the view.
void takeOutOfRow(QTreeWidgetItem *holder, const std::vector<QTreeWidgetItem *> &row, std::vector<ItemId> &expanded) {
    std::unordered_map<const QTreeWidgetItem *, int> placeOf;
    for (int i = 0; i < holder->childCount(); i++) placeOf[holder->child(i)] = i;
    std::vector<int> places;
    places.reserve(row.size());
    for (const QTreeWidgetItem *item : row) places.push_back(placeOf[item]);
    const std::vector<bool> stays = longestRising(places);
    for (std::size_t i = 0; i < row.size(); i++)
        if (!stays[i]) takeOut(row[i], expanded);
}

// Takes out what will stand elsewhere; what stays is in order then.
void takeOutMoved(const TreeContent &content, std::vector<ItemId> &expanded) {
    std::unordered_map<ItemId, std::vector<QTreeWidgetItem *>> rows;
    for (const TreeEntry &entry : content.entries) {
        QTreeWidgetItem *item = treeEntryOf(entry.id);
        if (item == nullptr) continue;
        QTreeWidgetItem *holder = item->parent() != nullptr ? item->parent() : treeView->invisibleRootItem();
        if (holder == holderOf(entry.shownUnder)) {
            rows[entry.shownUnder].push_back(item);
        } else {
            takeOut(item, expanded);
        }
    }
    for (const auto &[folder, row] : rows) takeOutOfRow(holderOf(folder), row, expanded);
}

void writeEntry(QTreeWidgetItem *item, const TreeEntry &entry) {
    item->setText(0, nameToQt(entry.name));
    item->setData(0, Qt::AccessibleTextRole, spokenName(entry.name, entry.kind));
    const QVariant shownKind = item->data(0, kindRole);
    if (shownKind.isValid() && shownKind.toUInt() == entry.kind) return;
    item->setData(0, Qt::UserRole, entry.id);
    item->setData(0, kindRole, entry.kind);
    item->setIcon(0, treeImage(entry.kind));
    item->setChildIndicatorPolicy(isFolderKind(entry.kind) ? QTreeWidgetItem::ShowIndicator
                                                           : QTreeWidgetItem::DontShowIndicator);
}

// Brings one entry to its place: its parent's next free child place.
void placeEntry(const TreeEntry &entry, std::unordered_map<ItemId, int> &placed, std::vector<ItemId> &expanded) {
    QTreeWidgetItem *parent = holderOf(entry.shownUnder);
    const int place = placed[entry.shownUnder]++;
    QTreeWidgetItem *&item = entryOf[entry.id];
    if (item == nullptr) {
        item = new QTreeWidgetItem();
        if (entry.opened) expanded.push_back(entry.id);
    }
    writeEntry(item, entry);
    if (parent->child(place) != item) parent->insertChild(place, item);
}

}  // namespace

QTreeWidgetItem *treeEntryOf(ItemId id) {
    const auto found = entryOf.find(id);
    return found == entryOf.end() ? nullptr : found->second;
}

void showInTree(ItemId id) {
    if (QTreeWidgetItem *entry = treeEntryOf(id)) treeView->scrollToItem(entry);
}

int showLibraryInTree() {
    const std::vector<ItemEntry> items = storeListItems();
    const TreeContent content = treeContent(items, treeRanks(items));
    const ItemId selected = selectedItemId();
    std::vector<ItemId> beside;
    for (const QTreeWidgetItem *entry : treeView->selectedItems()) beside.push_back(idOfEntry(entry));
    const QSignalBlocker quiet(treeView);
    std::vector<ItemId> expanded;
    std::unordered_map<ItemId, int> placed;
    const int scrolled = treeView->verticalScrollBar()->value();
    treeView->setAutoScroll(false);
    removeGone(content, expanded);
    takeOutMoved(content, expanded);
    for (const TreeEntry &entry : content.entries) placeEntry(entry, placed, expanded);
    for (const ItemId id : expanded)
        if (QTreeWidgetItem *entry = treeEntryOf(id)) entry->setExpanded(true);
    if (treeEntryOf(selected) != nullptr) markSelected(selected, beside);
    treeView->setAutoScroll(true);
    treeView->visualItemRect(treeView->topLevelItem(0));  // lays the entries out, which the scroll bar follows
    treeView->verticalScrollBar()->setValue(scrolled);
    return content.strays;
}

void markSelected(ItemId id, const std::vector<ItemId> &beside) {
    QTreeWidgetItem *entry = treeEntryOf(id);
    const QSignalBlocker quiet(treeView);
    if (entry == nullptr) {
        treeView->setCurrentItem(nullptr);
        treeView->clearSelection();
        return;
    }
    treeView->setCurrentItem(entry, 0, QItemSelectionModel::ClearAndSelect);
    for (const ItemId other : beside)
        if (QTreeWidgetItem *also = treeEntryOf(other)) also->setSelected(true);
}

void forgetEntries() { entryOf.clear(); }

}  // namespace numalink
