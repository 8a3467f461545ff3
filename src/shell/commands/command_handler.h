// What the commands do. Graphical thread only.
#pragma once

#include <QStringList>

namespace numalink {

// Runs a command of the table, or 4654 (opens the selected item's view) or 46 (Delete). Non-zero when handled; 0 when
// it isn't known, isn't enabled yet, lacks a selection, or an edited program could not be stored.
int handleCommand(int id);

// Handlers of the command table.
int openFiles();
int exitProgram();
int newFolder();
int newProgram();
int renameSelectedItem();
int deleteWithQuestion();
int refreshView();
int toggleTree();
int showAbout();

// Imports files one after the other, each with its own question; at once, or when an open dialog has been closed.
void importDropped(const QStringList &paths);

}  // namespace numalink
