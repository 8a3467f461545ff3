#include "shell/tree/tree_mouse.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>

#include "platform/clock.h"
#include "shell/parts/cursors.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/item_moves.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/label_edit.h"
#include "shell/tree/selection.h"
#include "shell/tree/several.h"
#include "shell/tree/tree_keys.h"
#include "shell/tree/tree_rules.h"

namespace numalink {

namespace {

constexpr std::uint64_t blockAfterRightClick = 1000;  // milliseconds
constexpr std::uint64_t comingBack = 250;             // milliseconds from the focus to the click that brought it

struct TreeMouse {
    ItemId pressedItem = noItem;
    QPoint pressedAt;
    bool pressedWasSelected = false;
    Qt::KeyboardModifiers pressedWith;        // Shift and Ctrl select several
    bool mayEditLabel = false;                // the press may be the first half of a click that edits the label
    std::uint64_t focusedAt = 0;              // tick
    std::uint64_t labelEditBlockedUntil = 0;  // tick: no label edit that the mouse starts begins before it
    bool dragging = false;
    bool canDrop = false;
    std::vector<ItemId> dragged;
    ItemId dropTarget = noItem;
};
TreeMouse state;

ItemId idAt(const QPoint &place) { return idOfEntry(treeView->itemAt(place)); }

// Whether the place is on the icon or label of an entry, not on its branch or the empty rest of the row.
bool onEntry(const QPoint &place) {
    const QTreeWidgetItem *entry = treeView->itemAt(place);
    if (entry == nullptr) return false;
    QRect row = treeView->visualItemRect(entry);
    const int labelWidth =
        treeView->iconSize().width() + 8 + treeView->fontMetrics().horizontalAdvance(entry->text(0)) + 8;
    row.setWidth(std::min(row.width(), labelWidth));
    return row.contains(place);
}

bool leftOfEntry(const QPoint &place) {
    const QTreeWidgetItem *entry = treeView->itemAt(place);
    return entry != nullptr && place.x() < treeView->visualItemRect(entry).left();
}

// Where the mark is drawn that opens and closes a folder.
bool onBranchMark(const QPoint &place) {
    if (!leftOfEntry(place)) return false;
    const QTreeWidgetItem *entry = treeView->itemAt(place);
    return entry->childIndicatorPolicy() == QTreeWidgetItem::ShowIndicator &&
           place.x() >= treeView->visualItemRect(entry).left() - treeView->indentation();
}

void toggleFolderAt(const QPoint &place) {
    QTreeWidgetItem *entry = treeView->itemAt(place);
    entry->setExpanded(!entry->isExpanded());
}

bool isAmongSeveral(ItemId item) {
    const std::vector<ItemId> selected = selectedItemIds();
    return selected.size() > 1 && std::ranges::find(selected, item) != selected.end();
}

// One of several that are selected takes the others along.
void beginDrag() {
    state.dragged = isAmongSeveral(state.pressedItem) ? selectedOutermost() : std::vector{state.pressedItem};
    state.dragging = true;
    state.canDrop = false;
    treeView->viewport()->grabMouse(noDropCursor());
    treeView->setFocus();
}

// The folder that a drop at this place would go to, or noItem.
ItemId folderUnder(const QPoint &place) {
    if (!onEntry(place)) return noItem;
    const std::optional<ItemEntry> entry = storeReadEntry(idAt(place));
    if (!entry) return noItem;
    return isFolderKind(entry->kind) ? entry->id : entry->parent;
}

void markTarget(ItemId target) {
    if (target == state.dropTarget) return;
    if (QTreeWidgetItem *entry = treeEntryOf(state.dropTarget)) entry->setBackground(0, QBrush());
    state.dropTarget = target;
    QColor mark = treeView->palette().highlight().color();
    mark.setAlpha(96);  // the name stays readable on it, in dark and light looks
    if (QTreeWidgetItem *entry = treeEntryOf(state.dropTarget)) entry->setBackground(0, mark);
}

void dragTo(const QPoint &place) {
    const ItemId target = folderUnder(place);
    const std::optional<ItemEntry> folder = storeReadEntry(target);
    state.canDrop = folder && std::ranges::all_of(state.dragged, [&](ItemId id) {
                        const std::optional<ItemEntry> dragged = storeReadEntry(id);
                        return dragged && canDrop(dragged->kind, folder->kind);
                    });
    treeView->viewport()->setCursor(state.canDrop ? dropCursor() : noDropCursor());
    markTarget(state.canDrop ? target : noItem);
}

void drop(const QPoint &place) {
    dragTo(place);
    const std::vector<ItemId> dragged = state.dragged;
    const ItemId target = state.canDrop ? folderUnder(place) : noItem;
    endDrag();
    if (target == noItem) return;
    if (dragged.size() > 1)
        moveSeveral(dragged, target);
    else
        moveDropped(dragged.front(), target);
}

// A second click on the selected entry's label, with no double click behind it, edits the label.
void editAfterPause(ItemId item) {
    QTimer::singleShot(QApplication::doubleClickInterval(), treeView, [item] {
        if (state.mayEditLabel && state.pressedItem == noItem && selectedItemId() == item && treeView->hasFocus() &&
            !state.dragging && tickCount() >= state.labelEditBlockedUntil)
            startLabelEdit(item);
    });
}

void leftPressed(const QMouseEvent &event) {
    const QPoint place = event.position().toPoint();
    // A click that comes back from elsewhere is no second click on the label.
    state.mayEditLabel = treeView->hasFocus() && tickCount() - state.focusedAt >= comingBack;
    treeView->setFocus();
    if (onBranchMark(place)) toggleFolderAt(place);
    state.pressedItem = leftOfEntry(place) ? noItem : idAt(place);
    state.pressedAt = place;
    state.pressedWith = event.modifiers();
    state.pressedWasSelected = state.pressedItem != noItem && state.pressedItem == selectedItemId();
}

void leftReleased(const QMouseEvent &event) {
    const QPoint place = event.position().toPoint();
    if (state.dragging) return drop(place);
    // The entry may stand elsewhere by now: the press has ended the edit of another one's label.
    const ItemId item = state.pressedItem;
    state.pressedItem = noItem;
    if (treeEntryOf(item) == nullptr) return;
    if ((state.pressedWith & Qt::ShiftModifier) != 0) {
        extendTo(item, (state.pressedWith & Qt::ControlModifier) != 0);
    } else if ((state.pressedWith & Qt::ControlModifier) != 0) {
        toggleAmong(item);
    } else if (!state.pressedWasSelected || severalSelected()) {
        selectItem(item);
    } else if (state.mayEditLabel && idAt(place) == item && onEntry(place)) {
        editAfterPause(item);
    }
}

bool mouseMoved(const QMouseEvent &event) {
    const QPoint place = event.position().toPoint();
    if ((event.buttons() & Qt::LeftButton) == 0) {
        // The release went to a box.
        if (state.dragging) endDrag();
        state.pressedItem = noItem;
    } else if (state.dragging) {
        dragTo(place);
    } else if (state.pressedItem != noItem &&
               (place - state.pressedAt).manhattanLength() >= QApplication::startDragDistance()) {
        beginDrag();
        dragTo(place);
    }
    return (event.buttons() & Qt::LeftButton) != 0;
}

void doubleClicked(const QMouseEvent &event) {
    if (event.button() != Qt::LeftButton) return;
    const QPoint place = event.position().toPoint();
    state.pressedItem = noItem;
    state.labelEditBlockedUntil = tickCount() + static_cast<std::uint64_t>(QApplication::doubleClickInterval());
    if (onBranchMark(place)) {
        toggleFolderAt(place);
    } else if (idAt(place) != noItem && !leftOfEntry(place)) {
        if (!state.pressedWasSelected && !selectItem(idAt(place))) return;
        toggleFolderAt(place);
    }
}

// The menu of an entry, or on empty ground what makes new items.
void showItemMenu(const QPoint &place, const QPoint &onScreen) {
    state.labelEditBlockedUntil = tickCount() + blockAfterRightClick;
    const ItemId item = idAt(place);
    if (item != noItem) {
        const std::vector<ItemId> beside = isAmongSeveral(item) ? selectedItemIds() : std::vector<ItemId>();
        if (selectAmong(item, beside)) runMenu(*itemMenu, onScreen);
    } else {
        runMenu(*treeGroundMenu, onScreen);
    }
}

bool contextMenu(const QContextMenuEvent &event) {
    // The right button in a drag ends the drag and nothing else.
    if ((QApplication::mouseButtons() & Qt::LeftButton) != 0) return true;
    if (event.reason() == QContextMenuEvent::Keyboard) {
        QTreeWidgetItem *entry = selectedEntry();
        const QPoint place = entry != nullptr ? treeView->visualItemRect(entry).center() : QPoint(-1, -1);
        showItemMenu(place, treeView->viewport()->mapToGlobal(entry != nullptr ? place : QPoint(0, 0)));
    } else {
        showItemMenu(event.pos(), event.globalPos());
    }
    return true;
}

// No button goes on to Qt's tree, which would select without asking the view.
void buttonPressed(const QMouseEvent &event) {
    if (state.dragging) return endDrag();
    if (event.button() == Qt::LeftButton) leftPressed(event);
}

void buttonReleased(const QMouseEvent &event) {
    if (event.button() == Qt::LeftButton) leftReleased(event);
}

bool viewportEvent(QWidget *, QEvent *event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
            buttonPressed(*static_cast<QMouseEvent *>(event));
            return true;
        case QEvent::MouseMove:
            return mouseMoved(*static_cast<QMouseEvent *>(event));
        case QEvent::MouseButtonRelease:
            buttonReleased(*static_cast<QMouseEvent *>(event));
            return true;
        case QEvent::MouseButtonDblClick:
            doubleClicked(*static_cast<QMouseEvent *>(event));
            return true;
        case QEvent::ContextMenu:
            return contextMenu(*static_cast<QContextMenuEvent *>(event));
        case QEvent::Hide:
            if (state.dragging) endDrag();
            return false;
        default:
            return false;
    }
}

bool treeEvent(QWidget *, QEvent *event) {
    // A key behind the click, also that of a command, means the entry rather than its label.
    if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) state.mayEditLabel = false;
    // In the tree it is no command of the text's.
    if (event->type() == QEvent::ShortcutOverride && isKeepKey(*static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        const auto &key = *static_cast<QKeyEvent *>(event);
        if (labelEditRunning()) return true;  // a key that the editor has no use for
        if (state.dragging) {
            if (key.key() == Qt::Key_Escape) endDrag();
            return true;
        }
        return treeKeyPressed(key);
    }
    if (event->type() == QEvent::FocusIn) state.focusedAt = tickCount();
    if ((event->type() == QEvent::FocusOut || event->type() == QEvent::WindowDeactivate) && state.dragging) endDrag();
    return false;
}

}  // namespace

bool dragRunning() { return state.dragging; }

void endDrag() {
    state.dragging = false;
    state.canDrop = false;
    state.dragged.clear();
    state.pressedItem = noItem;
    markTarget(noItem);
    treeView->viewport()->releaseMouse();
    treeView->viewport()->unsetCursor();
    refreshTreeWhenFree();
}

void connectTree() {
    hookEvents(treeView->viewport(), viewportEvent);
    hookEvents(treeView, treeEvent);
    // What can't be seen any more doesn't count as selected.
    for (const auto change : {&QTreeWidget::itemCollapsed, &QTreeWidget::itemExpanded})
        QObject::connect(treeView, change, treeView, followSeveral);
    connectTreeRefresh(refreshTreeNow, [] { return labelEditRunning() || dragRunning(); });
    refreshTree();
    if (treeView->topLevelItemCount() > 0) treeView->scrollToItem(treeView->topLevelItem(0));
}

void forgetTree() {
    state = {};
    forgetTreeKeys();
    forgetLabelEdit();
    forgetTreeRefresh();
    forgetSelection();
    forgetEntries();
}

}  // namespace numalink
