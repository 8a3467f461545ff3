#include "shell/library/search_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTextBlock>
#include <QTimer>
#include <QTreeWidget>
#include <set>

#include "calculator/charset.h"
#include "search/search.h"
#include "shell/editor/program_store.h"
#include "shell/library/item_paths.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/fonts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/on_view.h"
#include "shell/parts/scale.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/selection.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr std::size_t itemsAtOnce = 50;  // between two looks at the user's events
constexpr int selectionRole = Qt::UserRole + 1;
constexpr int itemColumn = 0, lineColumn = 1, textColumn = 2, becomesColumn = 3;

struct SearchWindow {
    QDialog *window = nullptr;
    QLineEdit *pattern = nullptr, *by = nullptr;
    QComboBox *how = nullptr, *where = nullptr;
    QCheckBox *matchCase = nullptr, *names = nullptr;
    QTreeWidget *list = nullptr;
    QLabel *info = nullptr;
    QPushButton *replace = nullptr;
    QTimer *timer = nullptr;  // runs while items are left
    SearchStretch selection;  // of the text on view, as it was when the window was asked for
    // The search whose places are listed.
    Search search;
    bool inSelection = false;
    std::string replacement;
    bool replaces = false;
    std::vector<ItemId> left;  // still to be searched, the next one last
    std::vector<FoundPlace> places;
    std::set<ItemId> items;  // with places
    QString replaced;        // what to tell of the replacing that led to this search
};
SearchWindow state;

QComboBox *addChoice(QGridLayout *grid, int row, Text label, const QStringList &entries) {
    auto *choice = new QComboBox;
    choice->addItems(entries);
    auto *name = new QLabel(textOf(label));
    name->setBuddy(choice);
    grid->addWidget(name, row, 0);
    grid->addWidget(choice, row, 1);
    return choice;
}

QLineEdit *addLine(QGridLayout *grid, int row, Text label) {
    auto *line = new QLineEdit;
    line->setFont(programFont());
    line->setMaxLength(static_cast<int>(searchPatternLimit / 4));  // characters of at most 4 bytes
    auto *name = new QLabel(textOf(label));
    name->setBuddy(line);
    grid->addWidget(name, row, 0);
    grid->addWidget(line, row, 1, 1, 3);
    return line;
}

void addSelection() {
    const QTextCursor cursor = programEdit->textCursor();
    const auto entry = storeReadEntry(viewItemId);
    if (!entry || !isTextKind(viewKind) || !cursor.hasSelection()) return;
    const QTextBlock first = programEdit->document()->findBlock(cursor.selectionStart());
    const QTextBlock last = programEdit->document()->findBlock(cursor.selectionEnd());
    state.selection = {
        .linesAhead = first.blockNumber(),
        .charactersAhead = static_cast<std::size_t>(cursor.selectionStart() - first.position()),
        .linesBehind = programEdit->blockCount() - 1 - last.blockNumber(),
        .charactersBehind = static_cast<std::size_t>(last.position() + last.length() - 1 - cursor.selectionEnd())};
    state.where->addItem(textOf(Text::searchInSelection, {pathOfItem(*entry).toStdString()}), entry->id);
    state.where->setItemData(state.where->count() - 1, true, selectionRole);
}

// The folder or item of each entry is its data: the library, the selected folder or that of the selected item, the
// selected item itself, the program with a selection.
void fillPlaces() {
    const int chosen = std::max(0, state.where->currentIndex());
    state.where->clear();
    state.where->addItem(textOf(Text::searchInLibrary), rootId);
    const auto selected = storeReadEntry(selectedItemId());
    if (selected) {
        const bool isFolder = isFolderKind(selected->kind);
        const auto folder = isFolder ? selected : storeReadEntry(selected->parent);
        if (folder) state.where->addItem(textOf(Text::searchInFolder, {pathOfItem(*folder).toStdString()}), folder->id);
        if (!isFolder)
            state.where->addItem(textOf(Text::searchInProgram, {pathOfItem(*selected).toStdString()}), selected->id);
    }
    addSelection();
    state.where->setCurrentIndex(std::min(chosen, state.where->count() - 1));
}

void showInfo() {
    const bool runs = state.timer->isActive();
    const std::vector<std::string> counts = {std::to_string(state.places.size()), std::to_string(state.items.size())};
    const bool isCut = state.places.size() >= searchPlaceLimit;
    if (!state.replaced.isEmpty())
        state.info->setText(state.replaced);
    else
        state.info->setText(state.places.empty() ? (runs ? QString() : textOf(Text::searchNothing))
                                                 : textOf(isCut ? Text::searchCut : Text::searchFound, counts));
    state.replace->setEnabled(!runs && state.replaces && !state.places.empty() && !storeIsReadOnly());
}

void addRow(const StoredItem &item, const FoundPlace &place, const QString &path, const std::string *becomes) {
    const QString line = place.line < 0 ? QString() : QString::number(place.line + 1);
    auto *row = new QTreeWidgetItem(state.list, {path, line, place.line < 0 ? QString() : toQt(place.text)});
    row->setData(itemColumn, Qt::UserRole, static_cast<int>(state.places.size()));
    row->setTextAlignment(lineColumn, Qt::AlignRight | Qt::AlignVCenter);
    row->setFont(textColumn, treeFont());
    if (becomes == nullptr || place.line < 0 || !isTextKind(item.kind)) return;
    const bool readable = !becomes->empty();
    row->setText(becomesColumn, readable ? toQt(*becomes) : textOf(Text::searchNoText));
    if (readable) row->setFont(becomesColumn, treeFont());
    row->setCheckState(itemColumn, readable ? Qt::Checked : Qt::Unchecked);
    if (!readable) row->setFlags(row->flags() & ~Qt::ItemIsUserCheckable);
}

// Each place by itself: what all places of a line together make of it, one sees once they are replaced.
void addPlaces(const StoredItem &item, const std::vector<FoundPlace> &found) {
    if (found.empty()) return;
    state.items.insert(item.id);
    const QString path = pathOfItem(item);
    const std::vector<std::string> becoming =
        state.replaces ? previewPlaces(*state.search, item, found, state.replacement) : std::vector<std::string>();
    for (std::size_t i = 0; i < found.size(); i++) {
        addRow(item, found[i], path, state.replaces ? &becoming[i] : nullptr);
        state.places.push_back(found[i]);
    }
}

void searchOn() {
    for (std::size_t count = 0; count < itemsAtOnce && !state.left.empty(); count++) {
        const ItemId id = state.left.back();
        state.left.pop_back();
        StoredItem item;
        if (!storeReadEntry(id) || !storeReadItem(id, item)) continue;
        std::vector<FoundPlace> found;
        searchItem(*state.search, item, found);
        if (state.inSelection) found = placesWithin(state.selection, item, found);
        addPlaces(item, found);
        if (state.places.size() >= searchPlaceLimit) state.left.clear();
    }
    if (state.left.empty()) state.timer->stop();
    showInfo();
}

void clearPlaces() {
    state.timer->stop();
    state.replaced.clear();
    state.left.clear();
    state.places.clear();
    state.items.clear();
    state.list->clear();
}

void startSearch() {
    if (!storeProgramFirst()) return;
    clearPlaces();
    std::string fault;
    static constexpr SearchHow hows[] = {SearchHow::words, SearchHow::tokens, SearchHow::expression};
    const std::string pattern = state.pattern->text().toStdString();
    state.search = compileSearch({.pattern = pattern,
                                  .how = hows[std::max(0, state.how->currentIndex())],
                                  .matchCase = state.matchCase->isChecked(),
                                  .inNames = state.names->isChecked()},
                                 fault);
    if (!state.search) {
        showInfo();
        state.info->setText(pattern.empty() ? QString() : textOf(Text::searchFault, {fault.empty() ? pattern : fault}));
        return;
    }
    state.replacement = state.by->text().toStdString();
    state.replaces = state.by->isModified() || !state.replacement.empty();
    state.list->setColumnHidden(becomesColumn, !state.replaces);
    const ItemId where = state.where->currentData().toUInt();
    const auto entry = storeReadEntry(where);
    state.inSelection = state.where->currentData(selectionRole).toBool();
    state.left = entry && !isFolderKind(entry->kind) ? std::vector<ItemId>{where} : searchedItems(where);
    std::reverse(state.left.begin(), state.left.end());
    state.timer->start();
    showInfo();
}

void openPlace(const QTreeWidgetItem *row) {
    if (row == nullptr) return;
    const FoundPlace place = state.places[static_cast<std::size_t>(row->data(itemColumn, Qt::UserRole).toInt())];
    if (!storeReadEntry(place.id) || !selectItem(place.id)) return;
    if (place.line < 0 || viewItemId != place.id || !isTextKind(viewKind)) return;
    const QTextBlock block = programEdit->document()->findBlockByNumber(place.line);
    if (!block.isValid()) return;
    const int last = block.position() + block.length() - 1;
    QTextCursor cursor(block);
    cursor.setPosition(std::min(block.position() + static_cast<int>(place.from), last));
    cursor.setPosition(std::min(block.position() + static_cast<int>(place.from + place.size), last),
                       QTextCursor::KeepAnchor);
    programEdit->setTextCursor(cursor);
    programEdit->ensureCursorVisible();
}

std::vector<FoundPlace> markedPlaces() {
    std::vector<FoundPlace> marked;
    for (int i = 0; i < state.list->topLevelItemCount(); i++) {
        const QTreeWidgetItem *row = state.list->topLevelItem(i);
        if (row->text(becomesColumn).isEmpty() && !state.replacement.empty()) continue;
        if (row->checkState(itemColumn) == Qt::Checked)
            marked.push_back(state.places[static_cast<std::size_t>(row->data(itemColumn, Qt::UserRole).toInt())]);
    }
    return marked;
}

void replaceMarked() {
    if (!storeProgramFirst() || !state.search) return;
    const std::vector<FoundPlace> marked = markedPlaces();
    if (marked.empty()) return;
    std::set<ItemId> items;
    for (const FoundPlace &place : marked) items.insert(place.id);
    ItemId culprit = noItem;
    const std::string name =
        items.size() == 1 ? std::string() : calculatorName(std::to_string(items.size()) + " x " + state.replacement);
    const ReplaceResult result = replaceEverywhere(*state.search, marked, state.replacement, name, culprit);
    const auto entry = storeReadEntry(culprit);
    const std::string culpritName = entry ? utf8FromCalculator(entry->name) : std::string();
    if (result == ReplaceResult::done || result == ReplaceResult::failed) showChangedItems();
    if (result == ReplaceResult::changed) tellUser(Text::searchChanged, {culpritName});
    if (result == ReplaceResult::unreadable)
        tellUser(Text::searchFault, {culpritName + ": " + textOf(Text::searchNoText).toStdString()});
    startSearch();
    if (result != ReplaceResult::done) return;
    state.replaced = textOf(Text::searchReplaced, {std::to_string(marked.size()), std::to_string(items.size())});
    showInfo();
}

QPushButton *addButton(QBoxLayout *row, Text text, Text tip, void (*act)()) {
    auto *button = new QPushButton(textOf(text));
    button->setToolTip(textOf(tip));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, state.window, act);
    row->addWidget(button);
    return button;
}

void makeFields(QVBoxLayout *layout) {
    auto *grid = new QGridLayout;
    state.pattern = addLine(grid, 0, Text::searchFor);
    state.by = addLine(grid, 1, Text::searchReplaceBy);
    state.how = addChoice(grid, 2, Text::searchHow,
                          {textOf(Text::searchWords), textOf(Text::searchTokens), textOf(Text::searchExpression)});
    state.where = addChoice(grid, 3, Text::searchIn, {});
    state.matchCase = new QCheckBox(textOf(Text::searchCase));
    state.names = new QCheckBox(textOf(Text::searchNames));
    for (const auto &[part, tip] : {std::pair<QWidget *, Text>{state.pattern, Text::tipSearchFor},
                                    {state.by, Text::tipSearchBy},
                                    {state.how, Text::tipSearchHow},
                                    {state.where, Text::tipSearchIn},
                                    {state.matchCase, Text::tipSearchCase},
                                    {state.names, Text::tipSearchNames}})
        part->setToolTip(textOf(tip));
    grid->addWidget(state.matchCase, 2, 2);
    grid->addWidget(state.names, 3, 2);
    grid->setColumnStretch(1, 1);
    layout->addLayout(grid);
}

void makeList(QVBoxLayout *layout) {
    state.list = new QTreeWidget;
    state.list->setAccessibleName(textOf(Text::searchTitle));
    state.list->setToolTip(textOf(Text::tipSearchList));
    state.list->setRootIsDecorated(false);
    state.list->setUniformRowHeights(true);
    state.list->setHeaderLabels(
        {textOf(Text::searchItem), textOf(Text::searchLine), textOf(Text::searchText), textOf(Text::searchBecomes)});
    state.list->headerItem()->setTextAlignment(lineColumn, Qt::AlignRight | Qt::AlignVCenter);
    state.list->setColumnWidth(itemColumn, grown(180));
    state.list->setColumnWidth(lineColumn, grown(50));
    state.list->setColumnWidth(textColumn, grown(230));
    state.list->header()->setStretchLastSection(true);
    state.list->setColumnHidden(becomesColumn, true);
    QObject::connect(state.list, &QTreeWidget::itemActivated, state.window, openPlace);
    layout->addWidget(state.list);
}

void makeWindow() {
    state.window = new QDialog(mainWindow);
    state.window->setObjectName(QStringLiteral("searchWindow"));
    state.window->setWindowTitle(textOf(Text::searchTitle));
    auto *layout = new QVBoxLayout(state.window);
    makeFields(layout);
    makeList(layout);
    state.info = new QLabel;
    state.info->setTextFormat(Qt::PlainText);
    layout->addWidget(state.info);
    auto *row = new QHBoxLayout;
    QPushButton *start = addButton(row, Text::searchStart, Text::tipSearchStart, startSearch);
    start->setDefault(true);
    state.replace = addButton(row, Text::searchReplace, Text::tipSearchReplace, replaceMarked);
    row->addStretch();
    row->addWidget(closeButtons(state.window));
    layout->addLayout(row);
    state.timer = new QTimer(state.window);
    state.timer->setInterval(0);
    QObject::connect(state.timer, &QTimer::timeout, state.window, searchOn);
    QObject::connect(state.window, &QDialog::finished, state.window, [] {
        clearPlaces();
        showInfo();
        state.info->clear();
    });
    const QSize room = mainWindow->screen()->availableSize() * 9 / 10;
    state.window->resize((QSize(720, 460) * textScale()).boundedTo(room));
    showInfo();
    state.info->clear();
}

}  // namespace

void showSearchWindow() {
    if (state.window == nullptr) makeWindow();
    fillPlaces();
    showUnminimised(state.window);
    state.window->activateWindow();
    state.pattern->setFocus();
    state.pattern->selectAll();
}

void searchLibraryChanged() {
    if (state.window == nullptr) return;
    clearPlaces();
    state.window->close();
}

void forgetSearchWindow() { state = {}; }

}  // namespace numalink
