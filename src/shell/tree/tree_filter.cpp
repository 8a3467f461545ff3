#include "shell/tree/tree_filter.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <set>

#include "shell/parts/client_layout.h"
#include "shell/parts/event_hook.h"
#include "shell/parts/kind_looks.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/selection.h"
#include "store/item_store.h"

namespace numalink {

namespace {

struct TreeFilter {
    QLineEdit *name = nullptr;
    QComboBox *kinds = nullptr;
};
TreeFilter state;

// The kinds that there are, each by its picture, which is also how many of them look alike.
void fillKinds() {
    const int chosen = state.kinds->count() == 0 ? -1 : state.kinds->currentData().toInt();  // 0 is an image, too
    const QSignalBlocker quiet(state.kinds);
    state.kinds->clear();
    state.kinds->addItem(textOf(Text::filterAllKinds), -1);
    std::set<int> images;
    const ItemId waiting = storeIsReadOnly() ? noItem : storeTempFolder();
    for (const ItemEntry &entry : storeListItems()) {
        const int image = treeImageOfKind(entry.kind);
        if (isFolderKind(entry.kind) || entry.parent == waiting || !images.insert(image).second) continue;
        const QString spoken = spokenName("", entry.kind);
        state.kinds->addItem(QIcon(imageOfKind(entry.kind)), spoken.mid(spoken.indexOf(QLatin1Char(',')) + 1).trimmed(),
                             image);
    }
    state.kinds->setCurrentIndex(std::max(0, state.kinds->findData(chosen)));
    // Its list is wider than the box, which leaves room for the name.
    const QAbstractItemView *list = state.kinds->view();
    state.kinds->view()->setMinimumWidth(list->sizeHintForColumn(0) + 2 * list->frameWidth());
}

bool fits(const QTreeWidgetItem *entry) {
    const auto item = storeReadEntry(idOfEntry(entry));
    const int image = state.kinds->currentData().toInt();
    if (image >= 0 && (!item || isFolderKind(item->kind) || treeImageOfKind(item->kind) != image)) return false;
    return entry->text(0).contains(state.name->text(), Qt::CaseInsensitive);
}

bool isFiltering() {
    return state.name != nullptr && (!state.name->text().isEmpty() || state.kinds->currentIndex() > 0);
}

// Whether anything of it stays; folders stand open around what does.
bool filterEntry(QTreeWidgetItem *entry, bool filters) {
    bool shows = !filters || fits(entry);
    bool holds = false;
    for (int i = 0; i < entry->childCount(); i++) holds = filterEntry(entry->child(i), filters) || holds;
    shows = shows || holds;
    entry->setHidden(!shows);
    if (filters && holds) entry->setExpanded(true);
    return shows;
}

bool leaveByEscape(QWidget *, QEvent *event) {
    if (event->type() != QEvent::KeyPress) return false;
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key == Qt::Key_Escape) {
        toggleTreeFilter();
        return true;
    }
    if (key != Qt::Key_Down && key != Qt::Key_Return && key != Qt::Key_Enter) return false;
    treeView->setFocus();
    return true;
}

void makeBar() {
    treeFilterBar = new QWidget(clientArea);
    auto *row = new QVBoxLayout(treeFilterBar);  // one above the other: each is as wide as the tree
    row->setContentsMargins(0, 0, 0, 2);
    row->setSpacing(2);
    state.name = new QLineEdit;
    state.name->setObjectName(QStringLiteral("treeFilter"));
    const QString hint = textOf(Text::filterNames).remove(QLatin1Char('&'));
    state.name->setPlaceholderText(textOf(Text::columnName) + QStringLiteral(" ..."));  // has room in any language
    state.name->setToolTip(hint);
    state.name->setAccessibleName(hint);
    state.name->setToolTip(textOf(Text::tipFilterName));
    state.name->setClearButtonEnabled(true);
    state.kinds = new QComboBox;
    state.kinds->setAccessibleName(textOf(Text::filterAllKinds));
    state.kinds->setToolTip(textOf(Text::tipFilterKind));
    state.kinds->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    state.kinds->setMinimumContentsLength(5);
    row->addWidget(state.name);
    row->addWidget(state.kinds);
    hookEvents(state.name, leaveByEscape);
    QObject::connect(state.name, &QLineEdit::textChanged, treeFilterBar, applyTreeFilter);
    QObject::connect(state.kinds, &QComboBox::currentIndexChanged, treeFilterBar, applyTreeFilter);
}

}  // namespace

bool treeFilterShown() { return treeFilterBar != nullptr && treeFilterBar->isVisibleTo(clientArea); }

void toggleTreeFilter() {
    if (treeFilterBar == nullptr) makeBar();
    const bool shows = !treeFilterShown();
    treeFilterBar->setVisible(shows);
    if (shows) {
        if (!treeVisible) toggleTree();
        fillKinds();
        state.name->setFocus();
    } else {
        state.name->clear();
        state.kinds->setCurrentIndex(0);
        treeView->setFocus();
    }
    applyLayout();
    applyTreeFilter();
}

void applyTreeFilter() {
    if (state.name == nullptr) return;
    const QSignalBlocker quiet(treeView);  // a folder that opens for the filter isn't opened by the user
    const bool filters = isFiltering();
    for (int i = 0; i < treeView->topLevelItemCount(); i++) filterEntry(treeView->topLevelItem(i), filters);
    followSeveral();  // what is left out isn't selected
}

void forgetTreeFilter() {
    state = {};
    treeFilterBar = nullptr;
}

}  // namespace numalink
