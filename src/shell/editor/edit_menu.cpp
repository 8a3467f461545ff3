#include "shell/editor/edit_menu.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPlainTextEdit>

#include "shell/editor/program_view.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"

namespace numalink {

namespace {

bool hasSelection() { return programEdit->textCursor().hasSelection(); }
bool canCut() { return hasSelection() && !programEdit->isReadOnly(); }
bool canPaste() { return programEdit->canPaste(); }
bool always() { return true; }
bool canUndo() { return programEdit->document()->isUndoAvailable(); }
bool canRedo() { return programEdit->document()->isRedoAvailable(); }

void deleteSelection() {
    QTextCursor cursor = programEdit->textCursor();
    cursor.removeSelectedText();
}

struct EditRow {
    Text text;
    QKeySequence::StandardKey key;
    bool (*enabled)();
    void (*run)();
};

constexpr EditRow editRows[] = {
    {Text::undo, QKeySequence::Undo, canUndo, undoInProgram},
    {Text::redo, QKeySequence::Redo, canRedo, redoInProgram},
    {Text::editCopy, QKeySequence::Copy, hasSelection, [] { programEdit->copy(); }},
    {Text::editCut, QKeySequence::Cut, canCut, [] { programEdit->cut(); }},
    {Text::editPaste, QKeySequence::Paste, canPaste, [] { programEdit->paste(); }},
    {Text::editDelete, QKeySequence::Delete, canCut, deleteSelection},
    {Text::editSelectAll, QKeySequence::SelectAll, always, [] { programEdit->selectAll(); }},
};

void showEditMenu(const QPoint &where) {
    QMenu menu(programEdit);
    menu.setObjectName(QStringLiteral("editMenu"));
    for (const EditRow &row : editRows) {
        QAction *action = menu.addAction(textOf(row.text));
        action->setShortcut(row.key);
        action->setShortcutContext(Qt::WidgetShortcut);
        action->setEnabled(row.enabled());
        QObject::connect(action, &QAction::triggered, programEdit, row.run);
        if (row.key == QKeySequence::Redo || row.key == QKeySequence::Delete) menu.addSeparator();
    }
    menu.exec(where);
    refreshTreeWhenFree();
}

bool menuEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::ContextMenu) return false;
    const auto &asked = *static_cast<QContextMenuEvent *>(event);
    const bool byKey = asked.reason() == QContextMenuEvent::Keyboard;
    showEditMenu(byKey ? programEdit->viewport()->mapToGlobal(programEdit->cursorRect().bottomLeft())
                       : asked.globalPos());
    return true;
}

}  // namespace

void connectEditMenu() {
    hookEvents(programEdit, menuEvent);
    hookEvents(programEdit->viewport(), menuEvent);
}

}  // namespace numalink
