#include "shell/editor/edit_menu.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPlainTextEdit>

#include "shell/parts/event_hook.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/shell_texts.h"

namespace numalink {

bool textIsSelected() { return programEdit->textCursor().hasSelection(); }
bool canCutText() { return textIsSelected() && !programEdit->isReadOnly(); }
bool canPasteText() { return programEdit->canPaste(); }
bool canUndoTyping() { return programEdit->document()->isUndoAvailable(); }
bool canRedoTyping() { return programEdit->document()->isRedoAvailable(); }

void copyText() { programEdit->copy(); }
void cutText() { programEdit->cut(); }
void pasteText() { programEdit->paste(); }
void selectWholeText() { programEdit->selectAll(); }

void deleteText() {
    if (canCutText()) programEdit->textCursor().removeSelectedText();
}

namespace {

bool menuEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::ContextMenu) return false;
    const auto &asked = *static_cast<QContextMenuEvent *>(event);
    const bool byKey = asked.reason() == QContextMenuEvent::Keyboard;
    const QPoint atCaret = programEdit->viewport()->mapToGlobal(programEdit->cursorRect().bottomLeft());
    runMenu(*programMenu, byKey ? atCaret : asked.globalPos());
    return true;
}

}  // namespace

void connectEditMenu() {
    hookEvents(programEdit, menuEvent);
    hookEvents(programEdit->viewport(), menuEvent);
}

}  // namespace numalink
