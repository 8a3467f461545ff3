#include "shell/workbench/calls_pane.h"

#include <QTreeWidget>
#include <QTreeWidgetItem>

#include "shell/parts/shell_texts.h"
#include "shell/workbench/debugging.h"
#include "shell/workbench/pane_parts.h"

namespace numalink {

namespace {

struct CallsPane {
    QTreeWidget *table = nullptr;  // its dock's
    std::vector<DebugPlace> calls;
};
CallsPane state;

void goToCall(QTreeWidgetItem *row) {
    const auto index = static_cast<std::size_t>(state.table->indexOfTopLevelItem(row));
    if (index >= state.calls.size()) return;
    goToPlace(state.calls[index]);
}

}  // namespace

QWidget *makeCallsPane() {
    state.table = makePaneTable({textOf(Text::columnPlace), textOf(Text::columnStatement)});
    state.table->setRootIsDecorated(false);
    QObject::connect(state.table, &QTreeWidget::itemActivated, state.table, goToCall);
    return state.table;
}

void refreshCalls() {
    state.table->setEnabled(shownStop() != nullptr);
    if (shownStop() == nullptr && runIsFollowed()) return;
    state.calls = shownStop() != nullptr ? shownCalls() : std::vector<DebugPlace>{};
    state.table->clear();
    for (const DebugPlace &place : state.calls) {
        const int cell = cellOfPlace(place.program, place.line, place.statement);
        new QTreeWidgetItem(state.table,
                            {textOf(Text::stopPlace, {programNameShown(place.program), std::to_string(place.line),
                                                      std::to_string(place.statement + 1)}),
                             toQt(statementText(place.program, cell))});
    }
    fitColumns(state.table);
}

void forgetCalls() {
    state.calls.clear();
    state.table->clear();
}

void forgetCallsPane() { state = {}; }

}  // namespace numalink
