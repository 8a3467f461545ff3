// What the Code menu holds: what the editor knows of the language.
#include "shell/commands/rows/rows.h"

#include "shell/editor/completion_list.h"
#include "shell/editor/indentation.h"
#include "shell/parts/on_view.h"
#include "shell/views/item_views.h"
#include "shell/workbench/code_commands.h"
#include "shell/workbench/code_panes.h"

namespace numalink {

namespace {

using enum MenuPosition;

constexpr Command rows[] = {
    {.id = CommandId::codeComplete,
     .menu = code,
     .text = Text::menuComplete,
     .shortcut = "Ctrl+Space",
     .tip = Text::tipComplete,
     .enabled = programOnView,
     .run = completeAtCaret},
    {.id = CommandId::codeExplain,
     .menu = code,
     .text = Text::menuExplain,
     .shortcut = "Ctrl+Shift+Space",
     .tip = Text::tipExplain,
     .enabled = programOnView,
     .run = explainAtCaret},
    {.id = CommandId::codeMend,
     .menu = code,
     .separatorAhead = true,
     .text = Text::menuMend,
     .shortcut = "Ctrl+.",
     .tip = Text::tipMend,
     .enabled = programOnView,
     .run = mendAtCaret},
    {.id = CommandId::codeNextProblem,
     .menu = code,
     .text = Text::menuNextProblem,
     .shortcut = "Shift+F3",
     .tip = Text::tipNextProblem,
     .enabled = programOnView,
     .run = goToNextProblem},
    {.id = CommandId::codeDefinition,
     .menu = code,
     .separatorAhead = true,
     .text = Text::menuDefinition,
     .shortcut = "Ctrl+G",
     .tip = Text::tipDefinition,
     .enabled = programOnView,
     .run = goToDefinition},
    {.id = CommandId::codeBack,
     .menu = code,
     .text = Text::menuBack,
     .shortcut = "Alt+Left",
     .tip = Text::tipBack,
     .enabled = canVisitBack,
     .run = goBack},
    {.id = CommandId::codeForward,
     .menu = code,
     .text = Text::menuForward,
     .shortcut = "Alt+Right",
     .tip = Text::tipForward,
     .enabled = canVisitForward,
     .run = goForward},
    {.id = CommandId::codeUses,
     .menu = code,
     .text = Text::menuUses,
     .shortcut = "Ctrl+Shift+U",
     .tip = Text::tipUses,
     .enabled = programOnView,
     .run = findUses},
    {.id = CommandId::codeRename,
     .menu = code,
     .text = Text::menuRenameName,
     .shortcut = "Ctrl+R",
     .tip = Text::tipRenameName,
     .enabled = programOnView,
     .run = renameAtCaret},
    {.id = CommandId::codeIndent,
     .menu = code,
     .separatorAhead = true,
     .text = Text::menuIndent,
     .tip = Text::tipIndent,
     .checked = linesAreIndented,
     .run = toggleIndentation},
    {.id = CommandId::codeCompleteTyping,
     .menu = code,
     .text = Text::menuCompleteTyping,
     .tip = Text::tipCompleteTyping,
     .checked = completesWhileTyping,
     .run = toggleCompletesWhileTyping},
    {.id = CommandId::codeProblems,
     .menu = code,
     .text = Text::paneProblems,
     .shortcut = "Ctrl+Shift+M",
     .checked = [] { return codePaneShown(CodePane::problems); },
     .run = [] { toggleCodePane(CodePane::problems); }},
    {.id = CommandId::codeOutline,
     .menu = code,
     .text = Text::paneOutline,
     .shortcut = "Ctrl+Shift+O",
     .checked = [] { return codePaneShown(CodePane::outline); },
     .run = [] { toggleCodePane(CodePane::outline); }},
};

}  // namespace

std::span<const Command> codeRows() { return rows; }

}  // namespace numalink
