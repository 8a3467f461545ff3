// What the panes have in common. Graphical thread only.
#pragma once

#include <QStringList>

class QTreeWidget;
class QTreeWidgetItem;

namespace numalink {

// A table with these columns; rows can be edited where startEdit is called, by a double click or F2, in the columns
// from first to last.
QTreeWidget *makePaneTable(const QStringList &columns);
void editColumns(QTreeWidget *table, int first, int last);

// Widens columns that are too narrow for what they hold, each up to half of the table, until the user has set one.
void fitColumns(QTreeWidget *table);

// A value that differs from the one before is bold and has a dot ahead of its name, so that no colour is needed.
void markChanged(QTreeWidgetItem *row, int column, bool changed);

}  // namespace numalink
