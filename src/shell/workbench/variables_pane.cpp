// Rows are kept from stop to stop, so that what is open stays open and a change can be told. Elements of a list or
// matrix get their rows when it is opened.
#include "shell/workbench/variables_pane.h"

#include <QBuffer>
#include <QImage>
#include <QTreeWidget>
#include <QTreeWidgetItem>
#include <algorithm>
#include <array>

#include "debugger/values.h"
#include "shell/parts/shell_texts.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/pane_parts.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int nameColumn = 0, valueColumn = 1, fullColumn = 2;
constexpr int targetRole = Qt::UserRole;      // the name by which a value is changed; none: it can't be
constexpr int digestRole = Qt::UserRole + 1;  // of a picture's dots
constexpr int pictureZoom = 2;

struct VariablesPane {
    QTreeWidget *table = nullptr;                                    // its dock's
    std::array<QTreeWidgetItem *, std::size(valueGroups)> groups{};  // null for one without a title
    bool filling = false;
    std::uint64_t stop = 0;   // the number of the one that is shown
    bool isSameStop = false;  // what has changed up to it stays marked
};
VariablesPane state;

QTreeWidgetItem *titleRow(Text title) {
    auto *row = new QTreeWidgetItem(state.table, {textOf(title).remove(QLatin1Char('&'))});
    row->setFirstColumnSpanned(true);
    row->setHidden(true);
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

void fillTexts(QTreeWidgetItem *parent, const std::vector<NamedText> &texts) {
    int index = 0;
    for (const NamedText &text : texts) {
        QTreeWidgetItem *row = childAt(parent, index++);
        const bool sameName = row->text(nameColumn) == toQt(text.name);
        const bool changed = hasChanged(row, sameName && row->text(valueColumn) != toQt(text.text));
        row->setText(nameColumn, toQt(text.name));
        row->setText(valueColumn, toQt(text.text));
        markChanged(row, valueColumn, changed);
    }
    dropChildren(parent, index);
}

// The picture itself, for the pointer.
QString pictureTip(const Surface &surface) {
    const QImage image(reinterpret_cast<const uchar *>(surface.dots.data()), surface.width, surface.height,
                       QImage::Format_RGB32);
    QByteArray png;
    QBuffer buffer(&png);
    image.scaled(image.size() * pictureZoom).save(&buffer, "PNG");
    return QStringLiteral("<img src=\"data:image/png;base64,%1\">").arg(QString::fromLatin1(png.toBase64()));
}

void fillPictures(QTreeWidgetItem *parent) {
    int index = 0;
    for (const NamedPicture &picture : debugPictures()) {
        QTreeWidgetItem *row = childAt(parent, index++);
        const auto digest = qHashRange(picture.surface->dots.begin(), picture.surface->dots.end());
        const QVariant before = row->data(nameColumn, digestRole);
        const bool sameName = row->text(nameColumn) == toQt(picture.name);
        if (!sameName || before != QVariant::fromValue(digest))
            row->setToolTip(nameColumn, pictureTip(*picture.surface));
        markChanged(row, valueColumn, hasChanged(row, sameName && before != QVariant::fromValue(digest)));
        row->setText(nameColumn, toQt(picture.name));
        row->setText(valueColumn, textOf(Text::pictureDots, {std::to_string(picture.dots)}));
        row->setToolTip(valueColumn, row->toolTip(nameColumn));
        row->setData(nameColumn, digestRole, QVariant::fromValue(digest));
    }
    dropChildren(parent, index);
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

// The elements as shown, in columns.
std::vector<QString> gridLines(const NamedArray &array) {
    std::vector<QString> lines(static_cast<std::size_t>(array.rows));
    for (int column = 1; column <= array.columns; column++) {
        QStringList cells;
        qsizetype width = 0;
        for (int row = 1; row <= array.rows; row++) {
            cells << toQt(elementTextOf(debugElement(array, row, column)).shown).trimmed();
            width = std::max(width, cells.back().size());
        }
        for (std::size_t row = 0; row < lines.size(); row++)
            lines[row] += cells[static_cast<qsizetype>(row)].rightJustified(width + (column > 1 ? 2 : 0));
    }
    return lines;
}

void fillArray(QTreeWidgetItem *parent, const NamedArray &array) {
    const QString size =
        array.isList ? QString::number(array.rows) : QStringLiteral("%1 \u00D7 %2").arg(array.rows).arg(array.columns);
    parent->setText(nameColumn, toQt(array.name));
    parent->setText(valueColumn, size);
    parent->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    if (!parent->isExpanded()) return;
    const std::vector<QString> grid = array.isList ? std::vector<QString>() : gridLines(array);
    for (int row = 1; row <= array.rows; row++) {
        QTreeWidgetItem *child = childAt(parent, row - 1);
        if (array.isList) {
            fillRow(child, elementName(array, row, 1), elementTextOf(debugElement(array, row, 1)),
                    elementName(array, row, 1));
            continue;
        }
        const QString &line = grid[static_cast<std::size_t>(row - 1)];
        const bool isOther =
            !child->text(valueColumn).isEmpty() && child->text(valueColumn).simplified() != line.simplified();
        markChanged(child, valueColumn, hasChanged(child, isOther));
        child->setText(nameColumn, QString::number(row));
        setCells(child, valueColumn, line, row);
        child->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
        fillMatrixRow(child, array, row);
    }
    dropChildren(parent, array.rows);
}

// Behind the groups.
constexpr int firstArray =
    static_cast<int>(std::ranges::count_if(valueGroups, [](const auto &group) { return group.title != Text::none; }));

void fillArrays() {
    int index = firstArray;
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

void fillGroup(const ValueGroup &group, QTreeWidgetItem *row) {
    if (group.sort == ValueGroup::Sort::arrays) return fillArrays();
    if (group.values != nullptr) fillValues(row, group.values());
    if (group.texts != nullptr) fillTexts(row, group.texts());
    if (group.sort == ValueGroup::Sort::pictures) fillPictures(row);
    row->setHidden(row->childCount() == 0);
}

void fillAll() {
    state.isSameStop = state.stop == shownStopNumber();
    state.stop = shownStopNumber();
    state.filling = true;
    for (std::size_t i = 0; i < std::size(valueGroups); i++) fillGroup(valueGroups[i], state.groups[i]);
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
    if (valuesCanBeRead()) fillAll();
    debugValueChanged();
}

}  // namespace

QWidget *makeVariablesPane() {
    state.table = makePaneTable({textOf(Text::columnName), textOf(Text::columnValue), textOf(Text::columnInFull)});
    editColumns(state.table, valueColumn, fullColumn);
    for (std::size_t i = 0; i < std::size(valueGroups); i++)
        state.groups[i] = valueGroups[i].title == Text::none ? nullptr : titleRow(valueGroups[i].title);
    state.groups.front()->setExpanded(true);
    QObject::connect(state.table, &QTreeWidget::itemChanged, state.table, edited);
    QObject::connect(state.table, &QTreeWidget::itemExpanded, state.table, [] {
        if (valuesCanBeRead()) fillAll();
    });
    return state.table;
}

void refreshVariables() {
    state.table->setEnabled(shownStop() != nullptr);
    if (valuesCanBeRead()) fillAll();
}

void forgetValues() {
    for (QTreeWidgetItem *row : state.groups)
        if (row != nullptr) dropChildren(row, 0);
    while (state.table->topLevelItemCount() > firstArray) delete state.table->takeTopLevelItem(firstArray);
    state.stop = 0;
}

void forgetVariablesPane() { state = {}; }

std::string pickedValue() {
    if (state.table == nullptr || state.table->currentItem() == nullptr) return {};
    return state.table->currentItem()->data(nameColumn, targetRole).toString().toStdString();
}

}  // namespace numalink
