#include "shell/tree/tree_keys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTreeWidget>

#include "emulator/machine/machine.h"
#include "platform/clock.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/selected_item.h"
#include "shell/tree/item_commands.h"
#include "shell/tree/selection.h"
#include "shell/tree/several.h"
#include "shell/views/item_views.h"

namespace numalink {

namespace {

// What has been typed lately to find an entry, and when the last of it, in milliseconds of tickCount.
struct TypedSearch {
    QString text;
    std::uint64_t at = 0;
};
TypedSearch state;

QTreeWidgetItem *firstEntry() {
    QTreeWidgetItem *entry = treeView->topLevelItem(0);
    return entry != nullptr && entry->isHidden() ? treeView->itemBelow(entry) : entry;
}

QTreeWidgetItem *lastEntry() {
    QTreeWidgetItem *entry = treeView->topLevelItem(treeView->topLevelItemCount() - 1);
    while (entry != nullptr && entry->isExpanded() && entry->childCount() > 0)
        entry = entry->child(entry->childCount() - 1);
    return entry;
}

QTreeWidgetItem *pageAway(QTreeWidgetItem *from, bool down) {
    const int rowHeight = std::max(1, treeView->visualItemRect(from).height());
    QTreeWidgetItem *entry = from;
    for (int rows = treeView->viewport()->height() / rowHeight - 1; rows > 0; rows--) {
        QTreeWidgetItem *next = down ? treeView->itemBelow(entry) : treeView->itemAbove(entry);
        if (next == nullptr) break;
        entry = next;
    }
    return entry;
}

// Left and right open and close a folder, or go to the entry above or the first below.
QTreeWidgetItem *sideways(QTreeWidgetItem *from, bool right) {
    if (right) {
        if (from->childCount() == 0) return from;
        if (from->isExpanded()) return from->child(0);
        from->setExpanded(true);
        return from;
    }
    if (from->isExpanded() && from->childCount() > 0) {
        from->setExpanded(false);
        return from;
    }
    return from->parent() != nullptr ? from->parent() : from;
}

// The next visible entry, from the current one on, that begins with what has been typed lately.
QTreeWidgetItem *searchTyped(const QString &text) {
    const std::uint64_t now = tickCount();
    const bool going = now - state.at < static_cast<std::uint64_t>(QApplication::keyboardInputInterval());
    state.text = going ? state.text + text : text;
    state.at = now;
    QTreeWidgetItem *start = selectedEntry() != nullptr ? selectedEntry() : firstEntry();
    QTreeWidgetItem *entry = start;
    if (entry != nullptr && state.text.size() == 1) entry = treeView->itemBelow(entry);
    for (int wrapped = 0; wrapped < 2; wrapped++) {
        for (; entry != nullptr; entry = treeView->itemBelow(entry))
            if (entry->text(0).startsWith(state.text, Qt::CaseInsensitive)) return entry;
        entry = firstEntry();
    }
    return start;
}

bool isNavigation(int key) {
    switch (key) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_Left:
        case Qt::Key_Right:
        case Qt::Key_Home:
        case Qt::Key_End:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            return true;
        default:
            return false;
    }
}

QTreeWidgetItem *navigated(int key, QTreeWidgetItem *from) {
    switch (key) {
        case Qt::Key_Home:
            return firstEntry();
        case Qt::Key_End:
            return lastEntry();
        default:
            break;
    }
    if (from == nullptr) return firstEntry();
    switch (key) {
        case Qt::Key_Up:
            return treeView->itemAbove(from) != nullptr ? treeView->itemAbove(from) : from;
        case Qt::Key_Down:
            return treeView->itemBelow(from) != nullptr ? treeView->itemBelow(from) : from;
        case Qt::Key_Left:
            return sideways(from, false);
        case Qt::Key_Right:
            return sideways(from, true);
        default:
            return pageAway(from, key == Qt::Key_PageDown);
    }
}

void goTo(QTreeWidgetItem *entry) {
    if (entry == nullptr || (entry == selectedEntry() && !severalSelected())) return;
    if (selectItem(idOfEntry(entry))) treeView->scrollToItem(entry);
}

// With Shift all on the way are selected; with Ctrl, what was kept stays so.
void navigate(const QKeyEvent &key) {
    QTreeWidgetItem *entry = navigated(key.key(), selectedEntry());
    const bool shift = (key.modifiers() & Qt::ShiftModifier) != 0, ctrl = (key.modifiers() & Qt::ControlModifier) != 0;
    if (entry == nullptr || entry == selectedEntry() || (!shift && !ctrl)) return goTo(entry);
    if (shift)
        extendTo(idOfEntry(entry), ctrl);
    else
        goAmong(idOfEntry(entry));
}

// Into what the entry shows; a folder opens or closes.
void enterPressed() {
    QTreeWidgetItem *entry = selectedEntry();
    if (entry == nullptr) return;
    if (entry->childIndicatorPolicy() == QTreeWidgetItem::ShowIndicator) {
        entry->setExpanded(!entry->isExpanded());
    } else {
        focusView();
    }
}

}  // namespace

bool treeKeyPressed(const QKeyEvent &key) {
    if (emulatorRunning) return true;  // the keyboard belongs to the emulated calculator
    if (key.key() == Qt::Key_Delete) {
        if (selectedEntry() == nullptr) return false;
        deleteWithQuestion();
        return true;
    }
    // Whatever is held down with them: Qt's tree would select without asking the view.
    if (isNavigation(key.key())) {
        navigate(key);
        return true;
    }
    if (key.matches(QKeySequence::SelectAll)) {
        selectAllShown();
        return true;
    }
    if (key.key() == Qt::Key_Escape && severalSelected()) {
        selectAlone();
        return true;
    }
    if ((key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0) {
        if (isKeepKey(key)) toggleKept();
        return key.key() == Qt::Key_Space;
    }
    if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) {
        enterPressed();
        return true;
    }
    if (!key.text().isEmpty() && key.text().at(0).isPrint()) {
        goTo(searchTyped(key.text()));
        return true;
    }
    return false;
}

bool isKeepKey(const QKeyEvent &key) {
    return key.key() == Qt::Key_Space && (key.modifiers() & Qt::ControlModifier) != 0;
}

void forgetTreeKeys() { state = {}; }

}  // namespace numalink
