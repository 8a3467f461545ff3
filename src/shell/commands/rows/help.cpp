// What the Help menu holds.
#include "shell/commands/rows/rows.h"

#include "shell/commands/file_commands.h"
#include "shell/dialogs/about_box.h"
#include "shell/dialogs/report_dialog.h"
#include "shell/help/manual_window.h"
#include "shell/help/reference_window.h"

namespace numalink {

namespace {

using enum MenuPosition;

constexpr Command rows[] = {
    {.id = CommandId::manual,
     .menu = help,
     .text = Text::menuManual,
     .shortcut = "F1",
     .tip = Text::tipManual,
     .endsLabelEdit = false,
     .run = showManualAtFirstPage},
    {.id = CommandId::languageReference,
     .menu = help,
     .text = Text::menuReference,
     .shortcut = "Shift+F1",
     .tip = Text::tipReference,
     .run = showReference},
    {.id = CommandId::keys, .menu = help, .text = Text::menuKeys, .tip = Text::tipKeys, .run = showKeysPage},
    {.id = CommandId::tour, .menu = help, .text = Text::menuTour, .tip = Text::tipTour, .run = [] { beginTour(); }},
    {.id = CommandId::whatIsNew, .menu = help, .text = Text::menuNews, .tip = Text::tipNews, .run = showWhatIsNew},
    {.id = CommandId::report,
     .menu = help,
     .separatorAhead = true,
     .text = Text::menuReport,
     .tip = Text::tipReport,
     .run = showReport},
    {.id = CommandId::about, .menu = help, .text = Text::menuAbout, .tip = Text::tipAbout, .run = showAboutBox},
};

}  // namespace

std::span<const Command> helpRows() { return rows; }

}  // namespace numalink
