// The menus, the buttons, and the rows of all menus in one table: a file of rows/ a menu.
#include "shell/commands/command_table.h"

#include <algorithm>
#include <vector>

#include "settings/recent_libraries.h"
#include "shell/commands/library_commands.h"
#include "shell/commands/rows/rows.h"
#include "shell/parts/on_view.h"
#include "shell/run/emulator_window.h"
#include "shell/tree/item_commands.h"
#include "shell/views/item_views.h"
#include "shell/workbench/debugging.h"

namespace numalink {

namespace {

using enum MenuPosition;

constexpr MenuRow menuRows[] = {
    {.menu = file, .text = Text::menuFile},
    {.menu = item, .text = Text::menuItem},
    {.menu = edit, .text = Text::menuEdit},
    {.menu = emulator, .text = Text::menuEmulator, .enabled = emulatorShown},
    {.menu = debug, .text = Text::menuDebug},
    {.menu = communication, .text = Text::menuCommunication},
    {.menu = view, .text = Text::menuView},
    {.menu = help, .text = Text::menuHelp},
    {.menu = recent, .text = Text::menuRecentLibraries, .within = file, .enabled = anyRecentLibrary},
    {.menu = zoom, .text = Text::menuZoom, .within = view, .oneChecked = true},
    {.menu = panes, .text = Text::menuPanes, .within = view},
    {.menu = speed, .text = Text::menuSpeed, .within = emulator, .oneChecked = true},
    {.menu = code, .text = Text::menuCode, .within = edit, .enabled = programOnView},
    {.menu = sort, .text = Text::menuSort, .within = view, .oneChecked = true},
    {.menu = program, .enabled = programOnView},
    {.menu = tray, .ofNoWindow = true},
};

constexpr ToolbarButton debugButtons[] = {
    {.id = CommandId::debugGoOn, .image = "debug-go"},       {.id = CommandId::debugPause, .image = "debug-pause"},
    {.id = CommandId::debugEnd, .image = "debug-end"},       {.id = CommandId::debugStep, .image = "debug-step"},
    {.id = CommandId::debugStepOver, .image = "debug-over"}, {.id = CommandId::debugStepOut, .image = "debug-out"},
    {.id = CommandId::debugBackStep, .image = "debug-back"}, {.id = CommandId::breakpoint, .image = "debug-point"},
};

constexpr ToolbarButton buttons[] = {
    {.id = CommandId::newProgram, .image = "toolbar-new", .text = Text::toolNewProgram},
    {.id = CommandId::transmit, .image = "toolbar-transmit", .text = Text::toolTransmit},
    {.id = CommandId::open, .image = "toolbar-open", .text = Text::toolOpen},
    {.id = CommandId::save, .image = "toolbar-save", .text = Text::toolSave},
    {.id = CommandId::remove, .image = "toolbar-delete", .text = Text::editDelete},
    {.id = CommandId::emulate,
     .image = "toolbar-emulate",
     .text = Text::toolEmulate,
     .otherText = Text::editorButton,
     .isOther = emulatorShown},
    {.id = CommandId::password, .image = "toolbar-password", .text = Text::toolPassword},
    {.id = CommandId::find, .image = "toolbar-find", .text = Text::toolFind},
    {.id = CommandId::settings, .image = "toolbar-settings", .text = Text::toolSettings},
};

std::vector<Command> rowsOfAllMenus() {
    std::vector<Command> rows;
    for (const std::span<const Command> ofMenu :
         {fileRows(), itemRows(), editRows(), codeRows(), emulatorRows(), debugRows(), communicationRows(), viewRows(),
          helpRows(), programRows()})
        rows.insert(rows.end(), ofMenu.begin(), ofMenu.end());
    return rows;
}

}  // namespace

bool programOnView() { return isTextKind(viewKind); }

std::span<const MenuRow> menuTable() { return menuRows; }
std::span<const ToolbarButton> toolbarTable() { return buttons; }
std::span<const ToolbarButton> debugBarTable() { return debugButtons; }

std::span<const Command> commandTable() {
    static const std::vector<Command> commands = rowsOfAllMenus();
    return commands;
}

const Command *findCommand(CommandId id) {
    const std::span<const Command> commands = commandTable();
    const auto found = std::ranges::find(commands, id, &Command::id);
    return found == commands.end() ? nullptr : &*found;
}

}  // namespace numalink
