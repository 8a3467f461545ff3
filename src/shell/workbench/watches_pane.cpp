#include "shell/workbench/watches_pane.h"

#include <QKeyEvent>
#include <QTreeWidget>
#include <QTreeWidgetItem>

#include "debugger/watches.h"
#include "shell/parts/color_contrast.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/shell_texts.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/pane_parts.h"

namespace numalink {

namespace {

constexpr int expressionColumn = 0, valueColumn = 1, fullColumn = 2;
constexpr int watchLimit = 100;  // rows
// What was evaluated at the last stop, in the column of the expression, and what it gave, in that of the value.
constexpr int knownRole = Qt::UserRole;

struct WatchesPane {
    QTreeWidget *table = nullptr;  // its dock's
    std::vector<QString> texts;    // a row each; behind them stands the one for a new expression
    bool filling = false;
    std::uint64_t stop = 0;  // the number of the one that is shown
};
WatchesPane state;

ValueText valueNow(const QString &text) {
    const WatchExpression expression = readWatch(text.toStdString());
    if (!expression.fault.empty()) return {expression.fault, {}, {}};
    if (!valuesCanBeRead()) return {};
    return watchText(evaluateWatch(expression));
}

// Since the stop before, whatever else is looked at anew.
void markIfChanged(QTreeWidgetItem *row, const QString &expression, const QString &value, bool isSameStop) {
    const bool isKnown = row->data(expressionColumn, knownRole).toString() == expression;
    const bool isOther =
        isKnown && shownStop()->reason != StopReason::entry && row->data(valueColumn, knownRole).toString() != value;
    markChanged(row, valueColumn, isOther || (isSameStop && isKnown && row->font(valueColumn).bold()));
    row->setData(expressionColumn, knownRole, expression);
    row->setData(valueColumn, knownRole, value);
}

void fill() {
    state.filling = true;
    const bool isSameStop = state.stop == shownStopNumber();
    if (valuesCanBeRead()) state.stop = shownStopNumber();
    while (state.table->topLevelItemCount() > static_cast<int>(state.texts.size()) + 1)
        delete state.table->takeTopLevelItem(state.table->topLevelItemCount() - 1);
    while (state.table->topLevelItemCount() < static_cast<int>(state.texts.size()) + 1) {
        auto *row = new QTreeWidgetItem(state.table);
        row->setFlags(row->flags() | Qt::ItemIsEditable);
    }
    const bool isMoving = shownStop() != nullptr && !valuesCanBeRead();  // what is shown stays
    for (std::size_t i = 0; i < state.texts.size(); i++) {
        QTreeWidgetItem *row = state.table->topLevelItem(static_cast<int>(i));
        const bool same = row->text(expressionColumn) == state.texts[i];
        if (same && isMoving) continue;
        const ValueText value = valueNow(state.texts[i]);
        if (valuesCanBeRead()) markIfChanged(row, state.texts[i], toQt(value.full), isSameStop);
        row->setText(expressionColumn, state.texts[i]);
        row->setForeground(expressionColumn, QBrush());
        row->setText(valueColumn, toQt(value.shown).trimmed());
        row->setText(fullColumn, toQt(value.full));
    }
    QTreeWidgetItem *last = state.table->topLevelItem(static_cast<int>(state.texts.size()));
    last->setText(expressionColumn, textOf(Text::watchNew));
    last->setForeground(expressionColumn, faintText(state.table->palette()));
    for (const int column : {valueColumn, fullColumn}) last->setText(column, QString());
    fitColumns(state.table);
    state.filling = false;
}

void edited(QTreeWidgetItem *row, int column) {
    if (state.filling || column != expressionColumn) return;
    const auto index = static_cast<std::size_t>(state.table->indexOfTopLevelItem(row));
    const QString text = row->text(expressionColumn).trimmed();
    const bool isNew = index >= state.texts.size();
    if (isNew) {
        if (!text.isEmpty() && text != textOf(Text::watchNew) && index < watchLimit) state.texts.push_back(text);
    } else if (text.isEmpty()) {
        state.texts.erase(state.texts.begin() + static_cast<std::ptrdiff_t>(index));
    } else {
        state.texts[index] = text;
    }
    // Not from within the signal: rows may go.
    QMetaObject::invokeMethod(state.table, fill, Qt::QueuedConnection);
}

bool tableEvent(QWidget *, QEvent *event) {
    if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Delete) return false;
    const auto index = static_cast<std::size_t>(state.table->indexOfTopLevelItem(state.table->currentItem()));
    if (index >= state.texts.size()) return false;
    state.texts.erase(state.texts.begin() + static_cast<std::ptrdiff_t>(index));
    fill();
    return true;
}

}  // namespace

QWidget *makeWatchesPane() {
    state.table =
        makePaneTable({textOf(Text::columnExpression), textOf(Text::columnValue), textOf(Text::columnInFull)});
    state.table->setRootIsDecorated(false);
    editColumns(state.table, expressionColumn, expressionColumn);
    QObject::connect(state.table, &QTreeWidget::itemChanged, state.table, edited);
    hookEvents(state.table, tableEvent);
    fill();
    return state.table;
}

void refreshWatches() { fill(); }

void forgetWatchesPane() { state = {}; }

}  // namespace numalink
