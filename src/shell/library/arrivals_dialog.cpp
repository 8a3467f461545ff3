#include "shell/library/arrivals_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/library/compare_window.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/fonts.h"
#include "shell/parts/kind_looks.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "store/items/arrivals.h"

namespace numalink {

namespace {

enum Column { itemColumn, whereColumn, stateColumn, choiceColumn, columnCount };

constexpr int columnGap = 12;    // pixels
constexpr int notesShown = 200;  // lines; the last one tells how many more there are

struct ArrivalsDialog {
    QDialog dialog{mainWindow};
    ArrivalsQuestion &question;
    QTreeWidget *list = nullptr;
    QLabel *count = nullptr;
    QPushButton *replace = nullptr, *keepBoth = nullptr, *skip = nullptr, *compare = nullptr;
    std::vector<std::size_t> order;  // of the rows in the list: what asks for an answer comes first

    explicit ArrivalsDialog(ArrivalsQuestion &asked) : question(asked) {}

    ArrivalRow &rowOf(QTreeWidgetItem *entry) {
        return question.rows[order[static_cast<std::size_t>(list->indexOfTopLevelItem(entry))]];
    }
};

bool isTaken(const ArrivalRow &row) { return row.state != ArrivalState::isNew; }
bool mayReplace(const ArrivalRow &row) { return row.state == ArrivalState::same || row.state == ArrivalState::differs; }
bool mayBeCompared(const ArrivalRow &row) { return row.there != 0 && isTextKind(row.kind); }

void orderRows(ArrivalsDialog &state) {
    constexpr int ranks[] = {3, 2, 0, 1};  // new, same, differs, twice
    for (std::size_t i = 0; i < state.question.rows.size(); i++) state.order.push_back(i);
    std::ranges::stable_sort(state.order, {}, [&](std::size_t place) {
        return ranks[static_cast<std::size_t>(state.question.rows[place].state)];
    });
}

void showChoice(QTreeWidgetItem *entry, const ArrivalRow &row) { entry->setText(choiceColumn, toQt(choiceWords(row))); }

void fillList(ArrivalsDialog &state) {
    for (const std::size_t place : state.order) {
        const ArrivalRow &row = state.question.rows[place];
        auto *entry = new QTreeWidgetItem(state.list, {toQt(row.name), toQt(row.where), toQt(wordsOf(row.state))});
        entry->setIcon(itemColumn, QIcon(imageOfKind(row.kind)));
        entry->setFont(itemColumn, treeFont());
        entry->setData(itemColumn, Qt::AccessibleTextRole, toQt(row.name) + spokenName("", row.kind));
        showChoice(entry, row);
        entry->setSelected(isTaken(row));
    }
    for (int column = 0; column < columnCount; column++) {
        state.list->resizeColumnToContents(column);
        state.list->setColumnWidth(column, state.list->columnWidth(column) + grown(columnGap));
    }
    state.list->setCurrentItem(state.list->topLevelItem(0), 0, QItemSelectionModel::NoUpdate);
}

// What the selected rows may become; one that isn't of that sort is left as it is.
void follow(ArrivalsDialog &state) {
    const QList<QTreeWidgetItem *> selected = state.list->selectedItems();
    const auto any = [&](bool (*fits)(const ArrivalRow &)) {
        return std::ranges::any_of(selected, [&](QTreeWidgetItem *entry) { return fits(state.rowOf(entry)); });
    };
    state.replace->setEnabled(any(mayReplace));
    state.keepBoth->setEnabled(!selected.isEmpty());
    state.skip->setEnabled(!selected.isEmpty());
    state.compare->setEnabled(selected.size() == 1 && any(mayBeCompared));
    state.count->setText(
        textOf(Text::arrivalsSelected, {std::to_string(selected.size()), std::to_string(state.question.rows.size())}));
}

void choose(ArrivalsDialog &state, ArrivalChoice choice) {
    for (QTreeWidgetItem *entry : state.list->selectedItems()) {
        ArrivalRow &row = state.rowOf(entry);
        if (choice == ArrivalChoice::replace && !mayReplace(row)) continue;
        const bool comesAsItIs = !isTaken(row) && choice == ArrivalChoice::keepBoth;
        row.choice = comesAsItIs ? ArrivalChoice::take : choice;
        showChoice(entry, row);
    }
    state.list->resizeColumnToContents(choiceColumn);
}

// Both are only looked at: what comes in has no place yet, and taking over would change what the list speaks of.
void compareChosen(ArrivalsDialog &state) {
    const QList<QTreeWidgetItem *> selected = state.list->selectedItems();
    if (selected.size() != 1 || !mayBeCompared(state.rowOf(selected.front()))) return;
    const ArrivalRow &row = state.rowOf(selected.front());
    CompareSource there = compareSourceOf(row.there), comes = compareSourceOf(row.id);
    if (there.label.isEmpty() || comes.label.isEmpty()) return;
    if (row.state == ArrivalState::twice) there.label = textOf(Text::arrivalsOf, {row.name});
    there.id = comes.id = noItem;
    comes.label = textOf(Text::arrivalsOf, {row.name});
    compareSources(there, comes);
}

QTreeWidget *makeList(const ArrivalsDialog &state) {
    auto *list = new QTreeWidget;
    list->setAccessibleName(state.dialog.windowTitle());
    list->setToolTip(textOf(Text::tipArrivalsList));
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->setTabKeyNavigation(false);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setHeaderLabels({textOf(Text::arrivalsItem), textOf(Text::arrivalsWhere), textOf(Text::arrivalsState),
                           textOf(Text::arrivalsChoice)});
    return list;
}

QPushButton *addButton(ArrivalsDialog &state, QBoxLayout *row, Text text, Text tip, std::function<void()> act) {
    auto *button = new QPushButton(textOf(text));
    button->setToolTip(textOf(tip));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, &state.dialog, std::move(act));
    row->addWidget(button);
    return button;
}

QBoxLayout *makeButtons(ArrivalsDialog &state) {
    auto *row = new QHBoxLayout;
    state.replace = addButton(state, row, Text::arrivalsReplace, Text::tipArrivalsReplace,
                              [&] { choose(state, ArrivalChoice::replace); });
    state.keepBoth = addButton(state, row, Text::arrivalsKeepBoth, Text::tipArrivalsKeep,
                               [&] { choose(state, ArrivalChoice::keepBoth); });
    state.skip =
        addButton(state, row, Text::arrivalsSkip, Text::tipArrivalsSkip, [&] { choose(state, ArrivalChoice::skip); });
    state.compare =
        addButton(state, row, Text::arrivalsCompareTwo, Text::tipArrivalsCompare, [&] { compareChosen(state); });
    row->addStretch();
    row->addWidget(state.count = new QLabel);
    return row;
}

void addNotes(const ArrivalsDialog &state, QBoxLayout *layout) {
    const std::vector<std::string> &notes = state.question.notes;
    if (notes.empty()) return;
    QString lines;
    for (std::size_t i = 0; i < std::min<std::size_t>(notes.size(), notesShown); i++)
        lines += toQt(notes[i]) + QLatin1Char('\n');
    if (notes.size() > notesShown)
        lines += textOf(Text::importMoreMessages, {std::to_string(notes.size() - notesShown)});
    auto *text = new QPlainTextEdit(lines.trimmed());
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setAccessibleName(textOf(Text::arrivalsNotes));
    text->setToolTip(textOf(Text::tipArrivalsNotes));
    text->setMaximumHeight(text->fontMetrics().lineSpacing() * 5);
    auto *label = new QLabel(textOf(Text::arrivalsNotes));
    label->setBuddy(text);
    layout->addWidget(label);
    layout->addWidget(text);
}

}  // namespace

void askArrivals(ArrivalsQuestion &question) {
    ArrivalsDialog state(question);
    state.dialog.setObjectName(QStringLiteral("arrivalsDialog"));
    state.dialog.setWindowTitle(textOf(question.moves ? Text::arrivalsMoveTitle : Text::arrivalsTitle));
    orderRows(state);
    auto *layout = new QVBoxLayout(&state.dialog);
    const bool asks = std::ranges::any_of(question.rows, isTaken);
    auto *intro = new QLabel(textOf(asks ? Text::arrivalsIntro : Text::arrivalsAllNew));
    intro->setWordWrap(true);
    state.list = makeList(state);
    if (!question.rows.empty()) layout->addWidget(intro);
    layout->addWidget(state.list);
    layout->addLayout(makeButtons(state));
    addNotes(state, layout);
    layout->addWidget(dialogButtons(&state.dialog));
    fillList(state);
    QObject::connect(state.list, &QTreeWidget::itemSelectionChanged, &state.dialog, [&] { follow(state); });
    QObject::connect(state.list, &QTreeWidget::itemDoubleClicked, &state.dialog, [&] { compareChosen(state); });
    follow(state);
    state.dialog.resize(state.dialog.sizeHint().expandedTo(QSize(640, 420) * textScale()));
    state.list->setFocus();
    question.accepted = runDialog(state.dialog) == QDialog::Accepted;
}

}  // namespace numalink
