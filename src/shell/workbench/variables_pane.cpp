// Rows are kept from stop to stop, so that what is open stays open and a change can be told. Elements of a list or
// matrix get their rows when it is opened.
#include "shell/workbench/variables_pane.h"

#include <QTreeWidget>
#include <QTreeWidgetItem>

#include "debugger/values.h"
#include "shell/parts/shell_texts.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/pane_parts.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int nameColumn = 0, valueColumn = 1, fullColumn = 2;
constexpr int targetRole = Qt::UserRole;  // the name by which a value is changed; none: it can't be

struct VariablesPane {
    QTreeWidget *table = nullptr;  // its dock's
    QTreeWidgetItem *variables = nullptr, *window = nullptr, *modes = nullptr;
    bool filling = false;
    unsigned stop = 0;        // the number of the one that is shown
    bool isSameStop = false;  // what has changed up to it stays marked
};
VariablesPane state;

QTreeWidgetItem *group(Text title) {
    auto *row = new QTreeWidgetItem(state.table, {textOf(title).remove(QLatin1Char('&'))});
    row->setFirstColumnSpanned(true);
    return row;
}

// The index-th child, made where it isn't there.
QTreeWidgetItem *childAt(QTreeWidgetItem *parent, int index) {
    while (parent->childCount() <= index) new QTreeWidgetItem(parent);
    return parent->child(index);
}

void dropChildren(QTreeWidgetItem *parent, int from) {
    while (parent->childCount() > from) delete parent->takeChild(parent->childCount() - 1);
}

// Since the stop before, whatever else is looked at anew.
bool hasChanged(const QTreeWidgetItem *row, bool isOther) {
    if (shownStop()->reason == StopReason::entry) return false;  // another run
    return isOther || (state.isSameStop && row->font(valueColumn).bold());
}

// What is another name's row now hasn't changed.
void fillRow(QTreeWidgetItem *row, const QString &name, const ValueText &value, const QString &target) {
    const QString shown = toQt(value.shown).trimmed(), full = toQt(value.full);
    const bool sameName = row->text(nameColumn) == name;
    const bool changed = hasChanged(row, sameName && row->text(fullColumn) != full);
    row->setText(nameColumn, name);
    row->setText(valueColumn, shown);
    row->setText(fullColumn, full);
    row->setData(nameColumn, targetRole, target);
    row->setFlags(target.isEmpty() ? row->flags() & ~Qt::ItemIsEditable : row->flags() | Qt::ItemIsEditable);
    markChanged(row, valueColumn, changed);
}

void fillValues(QTreeWidgetItem *parent, const std::vector<NamedValue> &values) {
    int index = 0;
    for (const NamedValue &value : values)
        fillRow(childAt(parent, index++), toQt(value.name), valueTextOf(value.value), toQt(value.name));
    dropChildren(parent, index);
}

void fillModes() {
    int index = 0;
    for (const NamedText &mode : debugModes()) {
        QTreeWidgetItem *row = childAt(state.modes, index++);
        const bool isOther = !row->text(valueColumn).isEmpty() && row->text(valueColumn) != toQt(mode.text);
        const bool changed = hasChanged(row, isOther);
        row->setText(nameColumn, toQt(mode.name));
        row->setText(valueColumn, toQt(mode.text));
        markChanged(row, valueColumn, changed);
    }
    dropChildren(state.modes, index);
}

QString elementName(const NamedArray &array, int row, int column) {
    const QString name = toQt(array.name);
    return array.isList ? QStringLiteral("%1[%2]").arg(name).arg(row)
                        : QStringLiteral("%1[%2,%3]").arg(name).arg(row).arg(column);
}

// A list's elements are a row each; a matrix has a row a row, with its elements below.
void fillMatrixRow(QTreeWidgetItem *parent, const NamedArray &array, int row) {
    if (!parent->isExpanded()) return;
    for (int column = 1; column <= array.columns; column++)
        fillRow(childAt(parent, column - 1), elementName(array, row, column),
                elementTextOf(debugElement(array, row, column)), elementName(array, row, column));
    dropChildren(parent, array.columns);
}

void fillArray(QTreeWidgetItem *parent, const NamedArray &array) {
    const QString size =
        array.isList ? QString::number(array.rows) : QStringLiteral("%1 \u00D7 %2").arg(array.rows).arg(array.columns);
    parent->setText(nameColumn, toQt(array.name));
    parent->setText(valueColumn, size);
    parent->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    if (!parent->isExpanded()) return;
    for (int row = 1; row <= array.rows; row++) {
        QTreeWidgetItem *child = childAt(parent, row - 1);
        if (array.isList) {
            fillRow(child, elementName(array, row, 1), elementTextOf(debugElement(array, row, 1)),
                    elementName(array, row, 1));
            continue;
        }
        QStringList cells;
        for (int column = 1; column <= array.columns; column++)
            cells << toQt(elementTextOf(debugElement(array, row, column)).shown).trimmed();
        const QString line = cells.join(QStringLiteral("   "));
        const bool isOther = !child->text(valueColumn).isEmpty() && child->text(valueColumn) != line;
        markChanged(child, valueColumn, hasChanged(child, isOther));
        child->setText(nameColumn, QString::number(row));
        child->setText(valueColumn, line);
        child->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
        fillMatrixRow(child, array, row);
    }
    dropChildren(parent, array.rows);
}

constexpr int groups = 3;  // ahead of the arrays

void fillArrays() {
    int index = groups;
    for (const NamedArray &array : debugArrays()) {
        QTreeWidgetItem *row = state.table->topLevelItem(index);
        // Others have come or gone: a row belongs to one name for as long as that is there.
        while (row != nullptr && row->text(nameColumn) != toQt(array.name)) {
            delete state.table->takeTopLevelItem(index);
            row = state.table->topLevelItem(index);
        }
        if (row == nullptr) row = new QTreeWidgetItem(state.table);
        fillArray(row, array);
        index++;
    }
    while (state.table->topLevelItemCount() > index) delete state.table->takeTopLevelItem(index);
}

void fillAll() {
    state.isSameStop = state.stop == shownStopNumber();
    state.stop = shownStopNumber();
    state.filling = true;
    fillValues(state.variables, debugVariables());
    fillValues(state.window, debugWindow());
    fillModes();
    fillArrays();
    fitColumns(state.table);
    state.filling = false;
}

Text whyNot(DebugChange result) {
    switch (result) {
        case DebugChange::notANumber:
            return Text::debugNotANumber;
        case DebugChange::notReal:
            return Text::debugNotReal;
        case DebugChange::noSuchPlace:
            return Text::debugNoSuchPlace;
        case DebugChange::runsOn:
            return Text::debugRunsOn;
        case DebugChange::done:
            break;
    }
    return Text::none;
}

void edited(QTreeWidgetItem *row, int column) {
    if (state.filling || (column != valueColumn && column != fullColumn)) return;
    const std::optional<DebugTarget> target =
        debugTargetNamed(row->data(nameColumn, targetRole).toString().toStdString());
    const DebugChange result =
        target ? debugChange(*target, row->text(column).trimmed().toStdString()) : DebugChange::noSuchPlace;
    if (result != DebugChange::done) tellUser(whyNot(result));
    // Also where nothing was changed: what was typed goes.
    if (shownStop() != nullptr) fillAll();
    debuggingChanged();
}

}  // namespace

QWidget *makeVariablesPane() {
    state.table = makePaneTable({textOf(Text::columnName), textOf(Text::columnValue), textOf(Text::columnInFull)});
    editColumns(state.table, valueColumn, fullColumn);
    state.variables = group(Text::paneVariables);
    state.window = group(Text::groupViewWindow);
    state.modes = group(Text::groupModes);
    state.variables->setExpanded(true);
    QObject::connect(state.table, &QTreeWidget::itemChanged, state.table, edited);
    QObject::connect(state.table, &QTreeWidget::itemExpanded, state.table, [] {
        if (shownStop() != nullptr) fillAll();
    });
    return state.table;
}

void refreshVariables() {
    const DebugStop *stop = shownStop();
    state.table->setEnabled(stop != nullptr);
    if (stop == nullptr) return;
    fillAll();
}

void forgetValues() {
    for (QTreeWidgetItem *row : {state.variables, state.window, state.modes}) dropChildren(row, 0);
    while (state.table->topLevelItemCount() > groups) delete state.table->takeTopLevelItem(groups);
    state.stop = 0;
}

void forgetVariablesPane() { state = {}; }

std::string pickedValue() {
    if (state.table == nullptr || state.table->currentItem() == nullptr) return {};
    return state.table->currentItem()->data(nameColumn, targetRole).toString().toStdString();
}

}  // namespace numalink
