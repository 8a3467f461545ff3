// The menus, toolbar and keys, built from the command table, and the states of their entries. Graphical thread only.
#pragma once

#include "shell/commands/command_table.h"

class QAction;
class QMenu;

namespace numalink {

void buildMenus();     // once the main window is there; from here on they follow commandStatesChanged
void buildToolbar();   // once the other widgets are there too
void buildDebugBar();  // into the debugger's bar, once that is there
void forgetMenus();    // when the windows are gone

QAction *commandAction(CommandId id);  // null when there is none
QMenu *menuAt(MenuPosition position);

}  // namespace numalink
