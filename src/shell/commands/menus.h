// The menu bar, toolbar and keys, built from the command table, and which commands are enabled. Graphical thread only.
#pragma once

#include "calculator/item_kinds.h"

class QAction;
class QMenu;

namespace numalink {

void buildMenus();
void buildToolbar();
void forgetMenus();  // when the windows are gone

// A command is enabled when the program can do it and enabled is set; the toolbar's button follows.
void setCommandEnabled(int id, bool enabled);
bool commandEnabled(int id);
QAction *commandAction(int id);
QMenu *menuAt(int position);

// The states of all commands that depend on the selected item; kind::none when nothing is selected.
void setMenuStates(ItemKind selected);
void setEditMenuEnabled(bool enabled);  // while a program is on view

// The keys of the table go to the commands, or, while an emulated program runs, to it.
void setShortcutsEnabled(bool enabled);

}  // namespace numalink
