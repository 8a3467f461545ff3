#include "shell/tree/label_edit.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QPointer>
#include <QScrollBar>
#include <QTreeWidget>

#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/tree_rules.h"
#include "shell/views/item_views.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct LabelEdit {
    QPointer<QLineEdit> editor;
    ItemId item = noItem;
    bool textComesNext = false;  // Enter goes on to the program's text
    bool telling = false;        // a box about a refused name is open: the focus it takes is no end of the edit
};
LabelEdit state;

constexpr int iconRoom = 20;  // pixels left of the text, for the image

void placeEditor() {
    QTreeWidgetItem *entry = treeEntryOf(state.item);
    if (state.editor == nullptr || entry == nullptr) return;
    const QRect row = treeView->visualItemRect(entry);
    const int left = std::min(row.left() + iconRoom, treeView->viewport()->width() - 60);
    state.editor->setGeometry(left, row.top(), treeView->viewport()->width() - left, row.height());
}

void tellFault(Text fault) {
    state.telling = true;
    if (fault == Text::programNameTooLong) {
        tellFixed(fault, {}, errorTitle);
    } else {
        tellUser(fault);
    }
    state.telling = false;
    if (state.editor != nullptr) state.editor->setFocus();
}

// The item with the name that has been typed for it, or nothing when there is nothing to rename.
struct Typed {
    ItemEntry item;
    std::string name;
};

std::optional<Typed> typedName() {
    const std::optional<ItemEntry> item = storeReadEntry(state.item);
    const std::string name = state.editor->text().toStdString();
    if (!item || name == utf8FromCalculator(item->name)) return std::nullopt;
    return Typed{*item, name};
}

// The end of an edit with its text. A refused name keeps the editor.
void commit() {
    if (state.editor == nullptr || state.telling) return;
    const std::optional<Typed> typed = typedName();
    if (typed) {
        if (const std::optional<Text> fault = nameFault(typed->item, typed->name)) return tellFault(*fault);
    }
    closeLabelEditor();
    if (!typed || !renameItem(typed->item, calculatorFromUtf8(typed->name))) return;
    refreshTree();
    showInTree(typed->item.id);
}

void commitByEnter() {
    const bool goesOn = state.textComesNext;
    commit();
    if (goesOn && state.editor == nullptr) focusView();
}

bool editorEvent(QWidget *, QEvent *event) {
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();  // keys that are commands elsewhere belong to the text here
        return false;
    }
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Escape) closeLabelEditor();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) commitByEnter();
        return key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter;
    }
    if (event->type() == QEvent::FocusOut && static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason &&
        static_cast<QFocusEvent *>(event)->reason() != Qt::ActiveWindowFocusReason) {
        QMetaObject::invokeMethod(state.editor.data(), commit, Qt::QueuedConnection);
    }
    return false;
}

}  // namespace

void startLabelEdit(ItemId id, AfterEnter next) {
    refreshTreeWhenFree();
    closeLabelEditor();
    QTreeWidgetItem *entry = treeEntryOf(id);
    if (entry == nullptr) return;
    state.item = id;
    state.textComesNext = next == AfterEnter::view;
    treeView->scrollToItem(entry);
    state.editor = new QLineEdit(treeView->viewport());
    state.editor->setText(entry->text(0));
    state.editor->selectAll();
    state.editor->setFrame(false);
    state.editor->setAccessibleName(entry->text(0));
    hookEvents(state.editor, editorEvent);
    QObject::connect(treeView->verticalScrollBar(), &QScrollBar::valueChanged, state.editor.data(), placeEditor);
    QObject::connect(treeView->horizontalScrollBar(), &QScrollBar::valueChanged, state.editor.data(), placeEditor);
    QObject::connect(treeView->verticalScrollBar(), &QScrollBar::rangeChanged, state.editor.data(), placeEditor);
    placeEditor();
    state.editor->show();
    state.editor->setFocus();
}

void closeLabelEditor() {
    if (state.editor == nullptr) return;
    QLineEdit *closing = state.editor;
    // An edit that ended because the focus had gone elsewhere leaves it there.
    const bool hadFocus = mainWindow->focusWidget() == closing;
    state.editor = nullptr;
    state.item = noItem;
    closing->hide();
    closing->deleteLater();
    if (hadFocus) treeView->setFocus();
    refreshTreeWhenFree();
}

bool finishLabelEdit() {
    commit();
    return state.editor == nullptr;
}

void finishLabelEditAtOnce() {
    if (state.editor == nullptr) return;
    const std::optional<Typed> typed = typedName();
    if (typed && !nameFault(typed->item, typed->name)) renameItem(typed->item, calculatorFromUtf8(typed->name));
    closeLabelEditor();
}

bool labelEditRunning() { return state.editor != nullptr; }
void forgetLabelEdit() { state = {}; }
QLineEdit *labelEditor() { return state.editor; }

}  // namespace numalink
