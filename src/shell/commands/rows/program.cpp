// What opens at the text of a program, and at the icon in the notification area.
#include "shell/commands/rows/rows.h"

#include "shell/commands/file_commands.h"
#include "shell/editor/edit_menu.h"
#include "shell/editor/program_view.h"

namespace numalink {

namespace {

using enum MenuPosition;

constexpr Command rows[] = {
    {.id = CommandId::undoTyping,
     .menu = program,
     .text = Text::undo,
     .standardKey = QKeySequence::Undo,
     .keyOfText = true,
     .offered = canUndoTyping,
     .run = undoInProgram},
    {.id = CommandId::redoTyping,
     .menu = program,
     .text = Text::redo,
     .standardKey = QKeySequence::Redo,
     .keyOfText = true,
     .offered = canRedoTyping,
     .run = redoInProgram},
    {.id = CommandId::copyText,
     .menu = program,
     .separatorAhead = true,
     .text = Text::editCopy,
     .standardKey = QKeySequence::Copy,
     .keyOfText = true,
     .offered = textIsSelected,
     .run = copyText},
    {.id = CommandId::cutText,
     .menu = program,
     .text = Text::editCut,
     .standardKey = QKeySequence::Cut,
     .keyOfText = true,
     .offered = canCutText,
     .run = cutText},
    {.id = CommandId::pasteText,
     .menu = program,
     .text = Text::editPaste,
     .standardKey = QKeySequence::Paste,
     .keyOfText = true,
     .offered = canPasteText,
     .run = pasteText},
    {.id = CommandId::deleteText,
     .menu = program,
     .text = Text::editDelete,
     .standardKey = QKeySequence::Delete,
     .keyOfText = true,
     .offered = canCutText,
     .run = deleteText},
    {.id = CommandId::selectText,
     .menu = program,
     .separatorAhead = true,
     .text = Text::editSelectAll,
     .standardKey = QKeySequence::SelectAll,
     .keyOfText = true,
     .run = selectWholeText},

    {.id = CommandId::exitFromTray, .menu = tray, .text = Text::trayExit, .endsLabelEdit = false, .run = exitProgram},
};

}  // namespace

std::span<const Command> programRows() { return rows; }

}  // namespace numalink
