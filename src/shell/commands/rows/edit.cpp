// What the Edit menu holds beside its Code menu.
#include "shell/commands/rows/rows.h"

#include "shell/commands/undo_commands.h"
#include "shell/editor/find_dialog.h"
#include "shell/library/search_window.h"
#include "shell/parts/on_view.h"
#include "shell/views/item_views.h"

namespace numalink {

namespace {

using enum MenuPosition;

constexpr Command rows[] = {
    {.id = CommandId::undo,
     .menu = edit,
     .text = Text::undo,
     .standardKey = QKeySequence::Undo,
     .repeats = true,
     .offered = undoOffered,
     .words = undoWords,
     .run = undoLast},
    {.id = CommandId::redo,
     .menu = edit,
     .text = Text::redo,
     .standardKey = QKeySequence::Redo,
     .repeats = true,
     .offered = redoOffered,
     .run = redoLast},
    {.id = CommandId::find,
     .menu = edit,
     .separatorAhead = true,
     .text = Text::menuFind,
     .shortcut = "Ctrl+F",
     .tip = Text::tipFind,
     .enabled = programOnView,
     .run = findInProgram},
    {.id = CommandId::findAgain,
     .menu = edit,
     .text = Text::menuFindAgain,
     .shortcut = "F3",
     .tip = Text::tipFindAgain,
     .enabled = programOnView,
     .run = findAgain},
    {.id = CommandId::searchLibrary,
     .menu = edit,
     .text = Text::menuSearchLibrary,
     .shortcut = "Ctrl+Shift+F",
     .storesFirst = true,
     .run = showSearchWindow},
    {.id = CommandId::refresh,
     .menu = edit,
     .text = Text::menuRefresh,
     .shortcut = "F5",
     .tip = Text::tipRefresh,
     .enabled = programOnView,
     .run = [] { reopenView(); }},
};

}  // namespace

std::span<const Command> editRows() { return rows; }

}  // namespace numalink
