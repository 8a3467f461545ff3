#include "shell/workbench/pane_parts.h"

#include <QApplication>
#include <QFontDatabase>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <QTreeWidget>
#include <algorithm>

#include "shell/parts/fonts.h"
#include "shell/parts/scale.h"

namespace numalink {

namespace {

constexpr int indentation = 12;  // pixels a level: panes are narrow
constexpr int leastHeight = 30;  // pixels: low screens have little room beside the calculator

constexpr int rowNumberRole = Qt::UserRole + 8;  // of cells in columns
constexpr int tipWidth = 64, mostTipLines = 30;  // characters

class PaneCells : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (option->rect.isEmpty() || !index.data(rowNumberRole).isValid()) return;
        const int margins = 2 * (option->widget->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1);
        const int cell = std::max(1, option->fontMetrics.horizontalAdvance(QLatin1Char('0')));
        option->text = cutBetweenCells(option->text, (option->rect.width() - margins) / cell);
    }
};

// Only some columns of a row can be written into; Qt knows only of rows.
class PaneTable : public QTreeWidget {
public:
    int firstEdited = 1, lastEdited = 0;  // none
    bool fitting = false;                 // the widths change by our own doing
    bool userSized = false;

    int wantedWidth(int column) const { return std::max(sizeHintForColumn(column), header()->sectionSizeHint(column)); }

protected:
    // What is cut is told whole; a row of cells by itself.
    bool viewportEvent(QEvent *event) override {
        if (event->type() != QEvent::ToolTip) return QTreeWidget::viewportEvent(event);
        const auto &help = *static_cast<QHelpEvent *>(event);
        const QModelIndex index = indexAt(help.pos());
        const bool isCut = index.isValid() && sizeHintForIndex(index).width() > visualRect(index).width();
        if (!isCut || index.data(Qt::ToolTipRole).isValid()) return QTreeWidget::viewportEvent(event);
        const QVariant number = index.data(rowNumberRole);
        const QString text = index.data().toString();
        QToolTip::showText(help.globalPos(),
                           number.isValid() ? tipOfCells(text, number.toInt())
                                            : QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped()),
                           viewport(), visualRect(index));
        return true;
    }
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override {
        if (index.column() >= firstEdited && index.column() <= lastEdited)
            return QTreeWidget::edit(index, trigger, event);
        // A box to tick is no text, though Qt offers both by this way.
        if (event == nullptr || !index.data(Qt::CheckStateRole).isValid()) return false;
        QStyleOptionViewItem option;
        initViewItemOption(&option);
        option.rect = visualRect(index);
        return itemDelegateForIndex(index)->editorEvent(event, model(), option, index);
    }
    // F2 in a row edits its first column that can be, whichever has the focus; Space ticks its box.
    void keyPressEvent(QKeyEvent *event) override {
        QTreeWidgetItem *row = currentItem();
        if (event->key() == Qt::Key_Space && row != nullptr && row->data(0, Qt::CheckStateRole).isValid())
            return row->setCheckState(0, row->checkState(0) == Qt::Checked ? Qt::Unchecked : Qt::Checked);
        const bool editKey =
            event->key() == Qt::Key_F2 || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (!editKey || row == nullptr || firstEdited > lastEdited || (row->flags() & Qt::ItemIsEditable) == 0)
            return QTreeWidget::keyPressEvent(event);
        editItem(row, firstEdited);
    }
};

}  // namespace

QString cutBetweenCells(const QString &cells, qsizetype room) {
    if (cells.size() <= room) return cells;
    qsizetype end = std::max<qsizetype>(room - 2, 0);
    while (end > 0 && (cells[end - 1] == QLatin1Char(' ') || cells[end] != QLatin1Char(' '))) end--;
    return end == 0 ? cells : cells.left(end) + QStringLiteral(" \u2026");
}

QTreeWidget *makePaneTable(const QStringList &columns) {
    auto *table = new PaneTable;
    table->setHeaderLabels(columns);
    table->setItemDelegate(new PaneCells(table));
    table->setUniformRowHeights(true);
    table->setIndentation(indentation);
    table->setMinimumHeight(grown(leastHeight));
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

void setCells(QTreeWidgetItem *row, int column, const QString &cells, int number) {
    if (!row->data(column, rowNumberRole).isValid())
        row->setFont(column, QFontDatabase::systemFont(QFontDatabase::FixedFont));
    row->setData(column, rowNumberRole, number);
    row->setText(column, cells);
}

QString tipOfCells(const QString &cells, int number) {
    const QStringList each = cells.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const auto byLength = [](const QString &left, const QString &right) { return left.size() < right.size(); };
    const qsizetype width = each.isEmpty() ? 1 : std::ranges::max(each, byLength).size() + 2;
    const qsizetype perLine = std::max<qsizetype>(1, tipWidth / width);
    QStringList lines;
    for (qsizetype at = 0; at < each.size() && lines.size() < mostTipLines; at += perLine) {
        QString line = QStringLiteral("[%1,%2]").arg(number).arg(at + 1).leftJustified(9);
        for (qsizetype cell = at; cell < std::min(at + perLine, each.size()); cell++)
            line += each[cell].rightJustified(width);
        lines << line.toHtmlEscaped();
    }
    if (std::ssize(lines) * perLine < each.size()) lines << QStringLiteral("\u2026");
    return QStringLiteral("<pre>%1</pre>").arg(lines.join(QLatin1Char('\n')));
}

void markChanged(QTreeWidgetItem *row, int column, bool changed) {
    QFont font = row->font(column);
    if (font.bold() == changed) return;
    font.setBold(changed);
    row->setFont(column, font);
}

}  // namespace numalink
