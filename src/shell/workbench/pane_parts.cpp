#include "shell/workbench/pane_parts.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTreeWidget>
#include <algorithm>

#include "shell/parts/fonts.h"

namespace numalink {

namespace {

constexpr int indentation = 12;  // pixels a level: panes are narrow

// Only some columns of a row can be written into; Qt knows only of rows.
class PaneTable : public QTreeWidget {
public:
    int firstEdited = 1, lastEdited = 0;  // none
    bool fitting = false;                 // the widths change by our own doing
    bool userSized = false;

    int wantedWidth(int column) const { return std::max(sizeHintForColumn(column), header()->sectionSizeHint(column)); }

protected:
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override {
        if (index.column() < firstEdited || index.column() > lastEdited) return false;
        return QTreeWidget::edit(index, trigger, event);
    }
    // F2 in a row edits its first column that can be, whichever has the focus.
    void keyPressEvent(QKeyEvent *event) override {
        QTreeWidgetItem *row = currentItem();
        const bool editKey =
            event->key() == Qt::Key_F2 || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (!editKey || row == nullptr || firstEdited > lastEdited || (row->flags() & Qt::ItemIsEditable) == 0)
            return QTreeWidget::keyPressEvent(event);
        editItem(row, firstEdited);
    }
};

}  // namespace

QTreeWidget *makePaneTable(const QStringList &columns) {
    auto *table = new PaneTable;
    table->setHeaderLabels(columns);
    table->setUniformRowHeights(true);
    table->setIndentation(indentation);
    table->setAlternatingRowColors(true);
    table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->header()->setStretchLastSection(true);
    for (int column = 0; column < table->columnCount(); column++)
        table->setColumnWidth(column, table->header()->sectionSizeHint(column));
    QObject::connect(table->header(), &QHeaderView::sectionResized, table, [table](int column, int, int) {
        const bool isLast = column == table->columnCount() - 1;
        if (!table->fitting && !isLast && QApplication::mouseButtons() != Qt::NoButton) table->userSized = true;
    });
    return table;
}

void fitColumns(QTreeWidget *table) {
    auto *pane = static_cast<PaneTable *>(table);
    if (pane->userSized) return;
    pane->fitting = true;
    for (int column = 0; column + 1 < pane->columnCount(); column++) {
        const int width = std::min(pane->wantedWidth(column), pane->viewport()->width() / 2);
        if (!pane->isColumnHidden(column) && pane->columnWidth(column) < width) pane->setColumnWidth(column, width);
    }
    pane->fitting = false;
}

void editColumns(QTreeWidget *table, int first, int last) {
    auto *pane = static_cast<PaneTable *>(table);
    pane->firstEdited = first;
    pane->lastEdited = last;
}

void markChanged(QTreeWidgetItem *row, int column, bool changed) {
    QFont font = row->font(column);
    if (font.bold() == changed) return;
    font.setBold(changed);
    row->setFont(column, font);
}

}  // namespace numalink
