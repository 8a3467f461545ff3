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

struct WatchesPane {
    QTreeWidget *table = nullptr;  // its dock's
    std::vector<QString> texts;    // a row each; behind them stands the one for a new expression
    bool filling = false;
};
WatchesPane state;

ValueText valueNow(const QString &text) {
    const WatchExpression expression = readWatch(text.toStdString());
    if (!expression.fault.empty()) return {expression.fault, {}, {}};
    if (shownStop() == nullptr) return {};
    return watchText(evaluateWatch(expression));
}

void fill() {
    state.filling = true;
    while (state.table->topLevelItemCount() > static_cast<int>(state.texts.size()) + 1)
        delete state.table->takeTopLevelItem(state.table->topLevelItemCount() - 1);
    while (state.table->topLevelItemCount() < static_cast<int>(state.texts.size()) + 1) {
        auto *row = new QTreeWidgetItem(state.table);
        row->setFlags(row->flags() | Qt::ItemIsEditable);
    }
    for (std::size_t i = 0; i < state.texts.size(); i++) {
        QTreeWidgetItem *row = state.table->topLevelItem(static_cast<int>(i));
        const ValueText value = valueNow(state.texts[i]);
        const bool same = row->text(expressionColumn) == state.texts[i];
        markChanged(row, valueColumn, same && row->text(fullColumn) != toQt(value.full));
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
