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
#include "shell/tree/item_tree.h"
#include "shell/tree/tree_rules.h"
#include "shell/views/item_views.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

QPointer<QLineEdit> editor;
ItemId editedItem = noItem;
bool textComesNext = false;  // Enter goes on to the program's text
bool telling = false;        // a box about a refused name is open: the focus it takes is no end of the edit

constexpr int iconRoom = 20;  // pixels left of the text, for the image

void placeEditor() {
    QTreeWidgetItem *entry = treeEntryOf(editedItem);
    if (editor == nullptr || entry == nullptr) return;
    const QRect row = treeView->visualItemRect(entry);
    const int left = std::min(row.left() + iconRoom, treeView->viewport()->width() - 60);
    editor->setGeometry(left, row.top(), treeView->viewport()->width() - left, row.height());
}

void tellFault(Text fault) {
    telling = true;
    if (fault == Text::programNameTooLong) {
        tellFixed(fault, {}, errorTitle);
    } else {
        tellUser(fault);
    }
    telling = false;
    if (editor != nullptr) editor->setFocus();
}

// The item with the name that has been typed for it, or nothing when there is nothing to rename.
struct Typed {
    ItemEntry item;
    std::string name;
};

std::optional<Typed> typedName() {
    const std::optional<ItemEntry> item = storeReadEntry(editedItem);
    const std::string name = editor->text().toStdString();
    if (!item || name == utf8FromCalculator(item->name)) return std::nullopt;
    return Typed{*item, name};
}

// The end of an edit with its text. A refused name keeps the editor.
void commit() {
    if (editor == nullptr || telling) return;
    const std::optional<Typed> typed = typedName();
    if (typed) {
        if (const std::optional<Text> fault = nameFault(typed->item, typed->name)) return tellFault(*fault);
    }
    closeLabelEditor();
    if (typed && renameItem(typed->item, calculatorFromUtf8(typed->name))) refreshTree();
}

void commitByEnter() {
    const bool goesOn = textComesNext;
    commit();
    if (goesOn && editor == nullptr) focusView();
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
        QMetaObject::invokeMethod(editor.data(), commit, Qt::QueuedConnection);
    }
    return false;
}

}  // namespace

void openLabelEditor(ItemId id, AfterEnter next) {
    closeLabelEditor();
    QTreeWidgetItem *entry = treeEntryOf(id);
    if (entry == nullptr) return;
    editedItem = id;
    textComesNext = next == AfterEnter::view;
    treeView->scrollToItem(entry);
    editor = new QLineEdit(treeView->viewport());
    editor->setText(entry->text(0));
    editor->selectAll();
    editor->setFrame(false);
    editor->setAccessibleName(entry->text(0));
    hookEvents(editor, editorEvent);
    QObject::connect(treeView->verticalScrollBar(), &QScrollBar::valueChanged, editor.data(), placeEditor);
    QObject::connect(treeView->horizontalScrollBar(), &QScrollBar::valueChanged, editor.data(), placeEditor);
    QObject::connect(treeView->verticalScrollBar(), &QScrollBar::rangeChanged, editor.data(), placeEditor);
    placeEditor();
    editor->show();
    editor->setFocus();
}

void closeLabelEditor() {
    if (editor == nullptr) return;
    QLineEdit *closing = editor;
    // An edit that ended because the focus had gone elsewhere leaves it there.
    const bool hadFocus = mainWindow->focusWidget() == closing;
    editor = nullptr;
    editedItem = noItem;
    closing->hide();
    closing->deleteLater();
    if (hadFocus) treeView->setFocus();
    refreshTreeWhenFree();
}

bool finishLabelEdit() {
    commit();
    return editor == nullptr;
}

void finishLabelEditAtOnce() {
    if (editor == nullptr) return;
    const std::optional<Typed> typed = typedName();
    if (typed && !nameFault(typed->item, typed->name)) renameItem(typed->item, calculatorFromUtf8(typed->name));
    closeLabelEditor();
}

bool labelEditorOpen() { return editor != nullptr; }
QLineEdit *labelEditor() { return editor; }

}  // namespace numalink
