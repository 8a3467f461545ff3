// The rows of the commands' table, a file a menu; command_table.h puts them together. Graphical thread only.
#pragma once

#include <span>

#include "shell/commands/command_table.h"

namespace numalink {

// A program, or another item of text, is on view.
bool programOnView();

std::span<const Command> fileRows();
std::span<const Command> itemRows();
std::span<const Command> editRows();
std::span<const Command> codeRows();
std::span<const Command> emulatorRows();
std::span<const Command> debugRows();
std::span<const Command> communicationRows();
std::span<const Command> viewRows();
std::span<const Command> helpRows();
std::span<const Command> programRows();

}  // namespace numalink
