#include "shell/tree_events.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QTimer>
#include <QTreeWidget>

#include "platform/clock.h"
#include "shell/command_handler.h"
#include "shell/command_table.h"
#include "shell/cursors.h"
#include "shell/event_hook.h"
#include "shell/item_rules.h"
#include "shell/item_tree.h"
#include "shell/item_views.h"
#include "shell/menus.h"
#include "shell/shell_widgets.h"
#include "shell/tree_keys.h"

namespace numalink {

std::uint64_t labelEditBlockedUntil = 0;
ItemId dragItemId = noItem;
bool dragActive = false;
bool dragCanDrop = false;

namespace {

constexpr std::uint64_t blockAfterRightClick = 1000;  // milliseconds

ItemId pressedItem = noItem;
QPoint pressedAt;
bool pressedWasSelected = false;
ItemId dropTarget = noItem;

ItemId idAt(const QPoint &place) {
    const QTreeWidgetItem *entry = treeView->itemAt(place);
    return entry == nullptr ? noItem : entry->data(0, Qt::UserRole).toUInt();
}

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

bool onBranch(const QPoint &place) {
    const QTreeWidgetItem *entry = treeView->itemAt(place);
    return entry != nullptr && place.x() < treeView->visualItemRect(entry).left();
}

void beginDrag() {
    dragItemId = pressedItem;
    dragActive = true;
    dragCanDrop = false;
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
    if (target == dropTarget) return;
    if (QTreeWidgetItem *entry = treeEntryOf(dropTarget)) entry->setBackground(0, QBrush());
    dropTarget = target;
    if (QTreeWidgetItem *entry = treeEntryOf(dropTarget)) entry->setBackground(0, treeView->palette().mid());
}

void dragTo(const QPoint &place) {
    const ItemId target = folderUnder(place);
    const std::optional<ItemEntry> dragged = storeReadEntry(dragItemId);
    const std::optional<ItemEntry> folder = storeReadEntry(target);
    dragCanDrop = dragged && folder && canDrop(dragged->kind, folder->kind);
    treeView->viewport()->setCursor(dragCanDrop ? dropCursor() : noDropCursor());
    markTarget(dragCanDrop ? target : noItem);
}

void drop(const QPoint &place) {
    dragTo(place);
    const ItemId dragged = dragItemId;
    const ItemId target = dragCanDrop ? folderUnder(place) : noItem;
    endDrag();
    if (target != noItem) moveDropped(dragged, target);
}

// A second click on the selected entry's label, with no double click behind it, edits the label.
void editAfterPause(ItemId item) {
    QTimer::singleShot(QApplication::doubleClickInterval(), treeView, [item] {
        if (pressedItem == noItem && selectedItemId() == item && treeView->hasFocus() && !dragActive &&
            tickCount() >= labelEditBlockedUntil)
            startLabelEdit(item);
    });
}

bool leftPressed(const QMouseEvent &event) {
    const QPoint place = event.position().toPoint();
    if (onBranch(place)) return false;
    treeView->setFocus();
    pressedItem = idAt(place);
    pressedAt = place;
    pressedWasSelected = pressedItem != noItem && pressedItem == selectedItemId();
    return true;
}

bool leftReleased(const QMouseEvent &event) {
    const QPoint place = event.position().toPoint();
    if (dragActive) {
        drop(place);
        return true;
    }
    const ItemId item = pressedItem;
    pressedItem = noItem;
    if (item == noItem || idAt(place) != item) return true;
    if (pressedWasSelected) {
        if (onEntry(place)) editAfterPause(item);
    } else {
        selectItem(item);
    }
    return true;
}

bool mouseMoved(const QMouseEvent &event) {
    const QPoint place = event.position().toPoint();
    if (dragActive) {
        dragTo(place);
    } else if (pressedItem != noItem && (place - pressedAt).manhattanLength() >= QApplication::startDragDistance()) {
        beginDrag();
        dragTo(place);
    }
    return (event.buttons() & Qt::LeftButton) != 0;
}

bool doubleClicked(const QMouseEvent &event) {
    const QPoint place = event.position().toPoint();
    QTreeWidgetItem *entry = treeView->itemAt(place);
    pressedItem = noItem;
    labelEditBlockedUntil = tickCount() + static_cast<std::uint64_t>(QApplication::doubleClickInterval());
    if (entry != nullptr && !onBranch(place)) {
        if (!pressedWasSelected) selectItem(idAt(place));
        entry->setExpanded(!entry->isExpanded());
    }
    return true;
}

// The menu of an entry, or on empty ground what makes new items.
void showItemMenu(const QPoint &place, const QPoint &onScreen) {
    labelEditBlockedUntil = tickCount() + blockAfterRightClick;
    const ItemId item = idAt(place);
    if (item != noItem) {
        if (selectItem(item)) itemMenu->exec(onScreen);
    } else {
        QMenu menu(treeView);
        menu.addAction(commandAction(command::newFolder));
        menu.addAction(commandAction(command::newProgram));
        menu.exec(onScreen);
    }
    refreshTreeWhenFree();
}

bool contextMenu(const QContextMenuEvent &event) {
    if (event.reason() == QContextMenuEvent::Keyboard) {
        QTreeWidgetItem *entry = selectedEntry();
        const QPoint place = entry != nullptr ? treeView->visualItemRect(entry).center() : QPoint(-1, -1);
        showItemMenu(place, treeView->viewport()->mapToGlobal(entry != nullptr ? place : QPoint(0, 0)));
    } else {
        showItemMenu(event.pos(), event.globalPos());
    }
    return true;
}

bool viewportEvent(QWidget *, QEvent *event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress: {
            const auto &mouse = *static_cast<QMouseEvent *>(event);
            if (dragActive) endDrag();
            return mouse.button() == Qt::LeftButton ? leftPressed(mouse) : mouse.button() == Qt::RightButton;
        }
        case QEvent::MouseMove:
            return mouseMoved(*static_cast<QMouseEvent *>(event));
        case QEvent::MouseButtonRelease: {
            const auto &mouse = *static_cast<QMouseEvent *>(event);
            return mouse.button() == Qt::LeftButton && leftReleased(mouse);
        }
        case QEvent::MouseButtonDblClick:
            return doubleClicked(*static_cast<QMouseEvent *>(event));
        case QEvent::ContextMenu:
            return contextMenu(*static_cast<QContextMenuEvent *>(event));
        case QEvent::Hide:
            if (dragActive) endDrag();
            return false;
        default:
            return false;
    }
}

bool treeEvent(QWidget *, QEvent *event) {
    if (event->type() == QEvent::KeyPress) {
        const auto &key = *static_cast<QKeyEvent *>(event);
        if (dragActive) {
            if (key.key() == Qt::Key_Escape) endDrag();
            return true;
        }
        return treeKeyPressed(key);
    }
    if ((event->type() == QEvent::FocusOut || event->type() == QEvent::WindowDeactivate) && dragActive) endDrag();
    return false;
}

}  // namespace

bool dragRunning() { return dragActive; }

void endDrag() {
    dragActive = false;
    dragCanDrop = false;
    dragItemId = noItem;
    pressedItem = noItem;
    markTarget(noItem);
    treeView->viewport()->releaseMouse();
    treeView->viewport()->unsetCursor();
    refreshTreeWhenFree();
}

void connectTreeEvents() {
    hookEvents(treeView->viewport(), viewportEvent);
    hookEvents(treeView, treeEvent);
}

}  // namespace numalink
