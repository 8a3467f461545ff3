#include "shell/workbench/breakpoints_pane.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>
#include <QTreeWidgetItem>
#include <QVBoxLayout>

#include "debugger/breakpoints.h"
#include "shell/editor/program_view.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/on_view.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/selection.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/pane_parts.h"
#include "store/item_store.h"

namespace numalink {

namespace {

constexpr int placeColumn = 0, conditionColumn = 1, countColumn = 2, hitsColumn = 3;
constexpr int idRole = Qt::UserRole;
constexpr int conditionWidth = 120;  // pixels at first

struct BreakpointsPane {
    QTreeWidget *table = nullptr;  // its dock's, as is the next
    QLineEdit *target = nullptr;
    QLabel *fault = nullptr;  // what was wrong with the last entry
    bool filling = false;
};
BreakpointsPane state;

// Its item was deleted; should that be taken back, it is there again.
bool isGone(const Breakpoint &point) {
    return !point.isOfData() && point.item != noItem && !storeReadEntry(point.item);
}

QString placeOf(const Breakpoint &point) {
    if (point.isOfData()) return toQt(point.target);
    const std::optional<ItemEntry> entry = storeReadEntry(point.item);
    const std::string name = entry ? utf8FromCalculator(entry->name) : point.program;
    const QString place =
        textOf(Text::stopPlace, {name, std::to_string(point.line), std::to_string(point.statement + 1)});
    return point.isLost ? textOf(Text::breakpointLost, {place.toStdString()}) : place;
}

std::optional<Breakpoint> pointOf(const QTreeWidgetItem *row) {
    if (row == nullptr) return std::nullopt;
    const int id = row->data(placeColumn, idRole).toInt();
    for (const Breakpoint &point : breakpoints())
        if (point.id == id) return point;
    return std::nullopt;
}

void tellFault(const QString &words) {
    state.fault->setText(words);
    state.fault->setVisible(!words.isEmpty());
}

// What the row has now; words where it can't be.
QString takeRow(const QTreeWidgetItem *row, Breakpoint point) {
    point.enabled = row->checkState(placeColumn) == Qt::Checked;
    const std::string condition = row->text(conditionColumn).trimmed().toStdString();
    if (!condition.empty() && condition != point.condition) {
        const std::string fault = conditionFault(condition);
        if (!fault.empty()) return textOf(Text::conditionWrong, {condition, fault});
    }
    point.condition = condition;
    bool isCount = true;
    const QString count = row->text(countColumn).trimmed();
    point.count = count.isEmpty() ? 0 : count.toULongLong(&isCount);
    if (!isCount) return textOf(Text::debugNotANumber);
    breakpointChange(point);
    return {};
}

void edited(QTreeWidgetItem *row, int) {
    if (state.filling) return;
    const std::optional<Breakpoint> point = pointOf(row);
    if (!point) return;
    tellFault(takeRow(row, *point));
    QMetaObject::invokeMethod(state.table, refreshBreakpoints, Qt::QueuedConnection);
}

void goTo(QTreeWidgetItem *row, int column) {
    const std::optional<Breakpoint> point = pointOf(row);
    if (column != placeColumn || !point || point->isOfData() || point->isLost) return;
    if (point->item != viewItemId && !selectItem(point->item)) return;
    selectStatement(point->line, point->statement);
}

void addOfData() {
    const std::string target = state.target->text().trimmed().toStdString();
    if (target.empty()) return;
    Breakpoint point;
    point.target = target;
    const bool isAdded = breakpointAdd(point) != 0;
    tellFault(isAdded ? QString() : textOf(Text::changeWrong, {target}));
    if (isAdded) state.target->clear();
}

bool tableEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Delete) return false;
    if (const std::optional<Breakpoint> point = pointOf(state.table->currentItem())) breakpointRemove(point->id);
    return true;
}

}  // namespace

QWidget *makeBreakpointsPane() {
    auto *pane = new QWidget;
    auto *layout = new QVBoxLayout(pane);
    layout->setContentsMargins(0, 0, 0, 0);
    state.table = makePaneTable({textOf(Text::columnPlace), textOf(Text::columnCondition), textOf(Text::columnFromHit),
                                 textOf(Text::columnHits)});
    state.table->setRootIsDecorated(false);
    state.table->setColumnWidth(conditionColumn, conditionWidth);
    state.table->setAccessibleName(textOf(Text::paneBreakpoints).remove(QLatin1Char('&')));
    editColumns(state.table, conditionColumn, countColumn);
    layout->addWidget(state.table);
    state.fault = new QLabel;
    state.fault->setObjectName(QStringLiteral("breakpointFault"));
    state.fault->setTextFormat(Qt::PlainText);
    state.fault->setWordWrap(true);
    state.fault->setMargin(4);
    state.fault->hide();
    layout->addWidget(state.fault);
    state.target = new QLineEdit;
    state.target->setPlaceholderText(textOf(Text::breakpointsChange));
    state.target->setToolTip(textOf(Text::breakpointsChange).toHtmlEscaped());
    state.target->setAccessibleName(textOf(Text::breakpointsChange));
    layout->addWidget(state.target);
    auto *errors = new QCheckBox(textOf(Text::breakpointsAtError));
    errors->setChecked(stopsAtFirstError());
    errors->setToolTip(textOf(Text::tipAtError));
    layout->addWidget(errors);
    QObject::connect(state.table, &QTreeWidget::itemChanged, state.table, edited);
    QObject::connect(state.table, &QTreeWidget::itemActivated, state.table, goTo);
    QObject::connect(state.target, &QLineEdit::returnPressed, state.target, addOfData);
    QObject::connect(errors, &QCheckBox::toggled, errors, stopAtFirstError);
    hookEvents(state.table, tableEvent);
    return pane;
}

void refreshBreakpoints() {
    state.filling = true;
    const std::optional<Breakpoint> picked = pointOf(state.table->currentItem());
    state.table->clear();
    for (const Breakpoint &point : breakpoints()) {
        if (isGone(point)) continue;
        auto *row = new QTreeWidgetItem(state.table);
        row->setFlags(row->flags() | Qt::ItemIsEditable | Qt::ItemIsUserCheckable);
        row->setData(placeColumn, idRole, point.id);
        row->setCheckState(placeColumn, point.enabled ? Qt::Checked : Qt::Unchecked);
        row->setText(placeColumn, placeOf(point));
        row->setText(conditionColumn, toQt(point.condition));
        row->setText(countColumn, point.count > 1 ? QString::number(point.count) : QString());
        row->setText(hitsColumn, QString::number(point.hits));
        if (picked && picked->id == point.id) state.table->setCurrentItem(row);
    }
    fitColumns(state.table);
    state.filling = false;
}

void forgetBreakpointsPane() { state = {}; }

}  // namespace numalink
