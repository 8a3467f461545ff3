// What every way to a command goes through: menu, key, button. Graphical thread only.
#pragma once

#include "shell/commands/command_table.h"

namespace numalink {

// Runs a command of the table; openView and deleteKey as well. Non-zero when handled; 0 when it isn't known, lacks a
// selection, or an edited label or program could not be stored.
int handleCommand(CommandId id);

}  // namespace numalink
