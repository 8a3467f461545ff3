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
    {command::open, file, false, 73, "Ctrl+O", OwnText::tipOpen, true, true, false, false, openFiles},
    {command::save, file, false, 74, "Ctrl+S", OwnText::tipSave, true, true, false, true, saveItems},
    {command::settings, file, true, 75, "", OwnText::tipSettings, true, true, false, false, changeSettings},
    {command::exit, file, false, 76, "Ctrl+Q", OwnText::tipExit, true, true, false, false, exitProgram},
    {command::newFolder, item, false, 122, "Ctrl+Shift+N", OwnText::tipNewFolder, true, true, false, false, newFolder},
    {command::newProgram, item, false, 77, "Ctrl+N", OwnText::tipNewProgram, true, true, false, false, newProgram},
    {command::rename, item, false, 78, "F2", OwnText::tipRename, false, true, true, true, renameSelectedItem},
    {command::remove, item, false, 79, "", OwnText::tipDelete, false, true, true, false, deleteWithQuestion},
    {command::transmit, item, true, 81, "F6", OwnText::tipTransmit, false, true, true, true, transmitSelected},
    {command::queue, item, false, 82, "F8", OwnText::tipQueue, false, true, true, true, queueSelected},
    {command::emulate, item, true, 83, "F7", OwnText::tipEmulate, false, true, true, true, emulatorToggle},
    {command::password, item, false, 84, "", OwnText::tipPassword, false, true, true, false, changePassword},
    {command::saveBitmap, item, true, 85, "", OwnText::tipSaveBitmap, false, true, true, false, saveItemAsBitmap},
    {command::find, edit, false, 86, "Ctrl+F", OwnText::tipFind, false, true, false, false, findInProgram},
    {command::findAgain, edit, false, 87, "F3", OwnText::tipFindAgain, false, true, false, false, findAgain},
    {command::refresh, edit, false, 88, "F5", OwnText::tipRefresh, false, true, false, false, refreshView},
    {command::screenshot, emulator, false, 72, "", OwnText::tipScreenshot, false, true, false, false, saveScreenshot},
    {command::transmitQueue, communication, false, 89, "F9", OwnText::tipTransmitQueue, false, true, false, true,
     transmitQueued},
    {command::hideTree, view, false, 161, "F11", OwnText::tipHideFiles, true, true, false, false, toggleTree},
    {command::about, help, false, 90, "", OwnText::tipAbout, true, true, false, false, showAbout},
};

constexpr ToolbarButton buttons[] = {
    {command::newProgram, "toolbar-new", 56, true},     {command::transmit, "toolbar-transmit", 57, false},
    {command::open, "toolbar-open", 58, true},          {command::save, "toolbar-save", 59, true},
    {command::remove, "toolbar-delete", 10, false},     {command::emulate, "toolbar-emulate", 60, false},
    {command::password, "toolbar-password", 61, false}, {command::find, "toolbar-find", 62, false},
    {command::settings, "toolbar-settings", 63, true},
};

}  // namespace

std::span<const Command> commandTable() { return commands; }
std::span<const ToolbarButton> toolbarTable() { return buttons; }

const Command *findCommand(int id) {
    const auto found = std::ranges::find(commands, id, &Command::id);
    return found == std::end(commands) ? nullptr : found;
}

}  // namespace numalink
