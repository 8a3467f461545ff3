#include "shell/tree/item_tree.h"

#include <QApplication>
#include <QIcon>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <QTreeWidget>
#include <QTreeWidgetItem>
#include <atomic>
#include <unordered_map>
#include <unordered_set>

#include "shell/parts/command_states.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/label_edit.h"
#include "shell/tree/tree_mouse.h"
#include "shell/tree/tree_rules.h"
#include "shell/views/item_views.h"
#include "telling/graphical_calls.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

std::unordered_map<ItemId, QTreeWidgetItem *> entryOf;
bool refreshOwed = false;
bool askingAgain = false;
bool selecting = false;  // selectItem is at work: it isn't entered again
ItemKind kindSelected = kind::none;
bool straysTold = false;  // once a run

constexpr int kindRole = Qt::UserRole + 1;  // the kind whose image an entry shows

ItemId idOf(const QTreeWidgetItem *entry) { return entry->data(0, Qt::UserRole).toUInt(); }

// A kind's image, and the word for it that a screen reader says.
struct KindLook {
    const char *image;
    Text word;
};

constexpr KindLook kindLooks[] = {{"program", Text::kindProgram}, {"folder", Text::kindFolder},
                                  {"matrix", Text::kindMatrix},   {"backup", Text::kindBackup},
                                  {"picture", Text::kindPicture}, {"screen", Text::kindScreen},
                                  {"list", Text::kindList},       {"block", Text::kindBlock},
                                  {"unknown", Text::kindUnknown}, {"function", Text::kindFunction}};

QIcon treeImage(ItemKind itemKind) {
    static std::unordered_map<int, QIcon> images;
    const int place = treeImageOfKind(itemKind);
    QIcon &image = images[place];
    if (!image.isNull()) return image;
    // The same when selected: Qt's own picture for that is a blue on the blue of the line.
    const QIcon drawn(QStringLiteral(":/images/tree-%1.svg").arg(QString::fromLatin1(kindLooks[place].image)));
    for (const int scale : {1, 2, 3}) {
        const QPixmap picture = drawn.pixmap(treeView->iconSize() * scale, 1.0);
        for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected}) image.addPixmap(picture, mode);
    }
    return image;
}

bool refreshMustWait() {
    return labelEditRunning() || dragRunning() || QApplication::activePopupWidget() != nullptr ||
           QApplication::activeModalWidget() != nullptr;
}

// A subtree that is taken out of the tree forgets which folders are open.
void rememberExpansion(const QTreeWidgetItem *entry, std::vector<ItemId> &expanded) {
    if (entry->isExpanded()) expanded.push_back(idOf(entry));
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

void tellStrays(int strays) {
    if (strays == 0 || straysTold) return;
    straysTold = true;
    tellUser(Text::itemWithoutFolder);
}

void refreshNow() {
    const TreeContent content = treeContent(storeListItems());
    const ItemId selected = selectedItemId();
    {
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
        if (QTreeWidgetItem *entry = treeEntryOf(selected)) treeView->setCurrentItem(entry);
        treeView->setAutoScroll(true);
        treeView->visualItemRect(treeView->topLevelItem(0));  // lays the entries out, which the scroll bar follows
        treeView->verticalScrollBar()->setValue(scrolled);
    }
    if (viewItemId != noItem && treeEntryOf(viewItemId) == nullptr) viewedItemGone();
    if (selected != noItem && treeEntryOf(selected) == nullptr) selectItem(noItem);
    tellStrays(content.strays);
}

// Not every dialog and menu says when it closes, so an owed refresh asks for itself.
void askAgain() {
    if (askingAgain) return;
    askingAgain = true;
    QTimer::singleShot(postponedMilliseconds, treeView, [] {
        askingAgain = false;
        refreshTreeWhenFree();
    });
}

void applySelection(QTreeWidgetItem *entry) {
    const QSignalBlocker quiet(treeView);
    treeView->setCurrentItem(entry);
    if (entry == nullptr) treeView->clearSelection();
}

}  // namespace

QString spokenName(const std::string &name, ItemKind itemKind) {
    return nameToQt(name) + QStringLiteral(", ") + textOf(kindLooks[treeImageOfKind(itemKind)].word);
}

QTreeWidgetItem *treeEntryOf(ItemId id) {
    const auto found = entryOf.find(id);
    return found == entryOf.end() ? nullptr : found->second;
}

// Qt makes the first entry current when the tree gets the focus, without selecting it: that is no selection.
QTreeWidgetItem *selectedEntry() {
    QTreeWidgetItem *entry = treeView != nullptr ? treeView->currentItem() : nullptr;
    return entry != nullptr && entry->isSelected() ? entry : nullptr;
}

ItemId selectedItemId() {
    const QTreeWidgetItem *entry = selectedEntry();
    return entry == nullptr ? noItem : idOf(entry);
}

ItemKind selectedKind() { return kindSelected; }

bool selectItem(ItemId id) {
    if (selecting) return false;
    if (id != noItem && id == selectedItemId() && viewItemId == id) return true;
    selecting = true;
    const bool left = leaveCurrentView();
    if (left) {
        applySelection(treeEntryOf(id));
        const std::optional<ItemEntry> entry = storeReadEntry(selectedItemId());
        kindSelected = entry ? entry->kind : kind::none;
        commandStatesChanged();
        if (entry) openSelectedItem();
    }
    selecting = false;
    return left;
}

void showSelectedAgain() { selectItem(selectedItemId()); }

void refreshTree() {
    graphicalRun([] {
        if (treeView == nullptr) return;
        refreshOwed = true;
        refreshTreeWhenFree();
    });
}

void refreshTreeWhenFree() {
    if (!refreshOwed || treeView == nullptr) return;
    if (refreshMustWait()) return askAgain();
    refreshOwed = false;
    refreshNow();
}

void startLabelEdit(ItemId id, AfterEnter next) {
    refreshTreeWhenFree();
    openLabelEditor(id, next);
}

bool labelEditRunning() { return labelEditorOpen(); }

void connectTree() {
    connectTreeEvents();
    refreshTree();
    if (treeView->topLevelItemCount() > 0) treeView->scrollToItem(treeView->topLevelItem(0));
}

void forgetTree() {
    entryOf.clear();
    refreshOwed = false;
    askingAgain = false;
    selecting = false;
    kindSelected = kind::none;
    straysTold = false;
}

}  // namespace numalink
