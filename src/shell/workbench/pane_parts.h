// What the panes have in common. Graphical thread only.
#pragma once

#include <QStringList>

class QTreeWidget;
class QTreeWidgetItem;

namespace numalink {

// A table with these columns, in which a text that is cut shows itself whole as a tip; rows can be edited where
// startEdit is called, by a double click or F2, in the columns from first to last.
QTreeWidget *makePaneTable(const QStringList &columns);
void editColumns(QTreeWidget *table, int first, int last);

// Widens columns that are too narrow for what they hold, each up to half of the table, until the user has set one.
void fitColumns(QTreeWidget *table);

// Cells of one row of an array, in columns of one width: a row that is too long is cut between two cells, and its tip
// has them all, each line of it with the place ([number, column]) of its first cell.
void setCells(QTreeWidgetItem *row, int column, const QString &cells, int number);
// As much of the cells as so many characters hold, up to the end of one; all where not even the first fits.
QString cutBetweenCells(const QString &cells, qsizetype room);
QString tipOfCells(const QString &cells, int number);

// A value that differs from the one before is bold and has a dot ahead of its name, so that no colour is needed.
void markChanged(QTreeWidgetItem *row, int column, bool changed);

}  // namespace numalink
