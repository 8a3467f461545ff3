#include "shell/commands/command_table.h"

#include <algorithm>

#include "shell/app/start_up.h"
#include "shell/commands/command_handler.h"
#include "shell/commands/link_commands.h"
#include "shell/dialogs/export_dialog.h"
#include "shell/dialogs/settings_dialog.h"
#include "shell/editor/find_dialog.h"
#include "shell/editor/password_dialog.h"
#include "shell/run/emulator_window.h"
#include "shell/views/bitmap_export.h"

namespace numalink {

namespace {

using enum MenuPosition;

// In the order of the menus.
constexpr Command commands[] = {
    // id, menu, separator, text, key, tip, at start, working, selection, stores first, handler
    {command::open, file, false, Text::menuOpen, "Ctrl+O", Text::tipOpen, true, true, false, false, openFiles},
    {command::save, file, false, Text::menuSave, "Ctrl+S", Text::tipSave, true, true, false, true, saveItems},
    {command::settings, file, true, Text::menuSettings, "", Text::tipSettings, true, true, false, false,
     changeSettings},
    {command::exit, file, false, Text::menuExit, "Ctrl+Q", Text::tipExit, true, true, false, false, exitProgram},
    {command::newFolder, item, false, Text::menuNewFolder, "Ctrl+Shift+N", Text::tipNewFolder, true, true, false, false,
     newFolder},
    {command::newProgram, item, false, Text::menuNewProgram, "Ctrl+N", Text::tipNewProgram, true, true, false, false,
     newProgram},
    {command::rename, item, false, Text::menuRename, "F2", Text::tipRename, false, true, true, true,
     renameSelectedItem},
    {command::remove, item, false, Text::menuDelete, "", Text::tipDelete, false, true, true, false, deleteWithQuestion},
    {command::transmit, item, true, Text::menuTransmit, "F6", Text::tipTransmit, false, true, true, true,
     transmitSelected},
    {command::queue, item, false, Text::menuQueue, "F8", Text::tipQueue, false, true, true, true, queueSelected},
    {command::emulate, item, true, Text::menuEmulate, "F7", Text::tipEmulate, false, true, true, true, emulatorToggle},
    {command::password, item, false, Text::menuPassword, "", Text::tipPassword, false, true, true, false,
     changePassword},
    {command::saveBitmap, item, true, Text::menuSaveBitmap, "", Text::tipSaveBitmap, false, true, true, false,
     saveItemAsBitmap},
    {command::find, edit, false, Text::menuFind, "Ctrl+F", Text::tipFind, false, true, false, false, findInProgram},
    {command::findAgain, edit, false, Text::menuFindAgain, "F3", Text::tipFindAgain, false, true, false, false,
     findAgain},
    {command::refresh, edit, false, Text::menuRefresh, "F5", Text::tipRefresh, false, true, false, false, refreshView},
    {command::screenshot, emulator, false, Text::menuSaveScreenshot, "", Text::tipScreenshot, false, true, false, false,
     saveScreenshot},
    {command::transmitQueue, communication, false, Text::menuTransmitQueue, "F9", Text::tipTransmitQueue, false, true,
     false, true, transmitQueued},
    {command::hideTree, view, false, Text::menuHideFiles, "F11", Text::tipHideFiles, true, true, false, false,
     toggleTree},
    {command::about, help, false, Text::menuAbout, "", Text::tipAbout, true, true, false, false, showAbout},
};

constexpr ToolbarButton buttons[] = {
    {command::newProgram, "toolbar-new", Text::toolNewProgram, true},
    {command::transmit, "toolbar-transmit", Text::toolTransmit, false},
    {command::open, "toolbar-open", Text::toolOpen, true},
    {command::save, "toolbar-save", Text::toolSave, true},
    {command::remove, "toolbar-delete", Text::editDelete, false},
    {command::emulate, "toolbar-emulate", Text::toolEmulate, false},
    {command::password, "toolbar-password", Text::toolPassword, false},
    {command::find, "toolbar-find", Text::toolFind, false},
    {command::settings, "toolbar-settings", Text::toolSettings, true},
};

}  // namespace

std::span<const Command> commandTable() { return commands; }
std::span<const ToolbarButton> toolbarTable() { return buttons; }

const Command *findCommand(int id) {
    const auto found = std::ranges::find(commands, id, &Command::id);
    return found == std::end(commands) ? nullptr : found;
}

}  // namespace numalink
