#include "shell/library/duplicates_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QMainWindow>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "search/duplicates.h"
#include "shell/library/compare_window.h"
#include "shell/library/item_paths.h"
#include "shell/parts/dialog_parts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/selection.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

ItemId itemOf(const QTreeWidgetItem *row) {
    return row == nullptr || row->parent() == nullptr ? noItem : row->data(0, Qt::UserRole).toUInt();
}

QTreeWidget *listOf(const std::vector<Duplicates> &found) {
    auto *list = new QTreeWidget;
    list->setAccessibleName(textOf(Text::duplicatesTitle));
    list->setToolTip(textOf(Text::tipDuplicatesList));
    list->setHeaderHidden(true);
    for (const Duplicates &group : found) {
        const Text likeness = group.likeness == Likeness::bytes ? Text::duplicatesBytes : Text::duplicatesLoose;
        auto *head = new QTreeWidgetItem(list, {textOf(likeness)});
        for (const ItemId id : group.ids) {
            const auto entry = storeReadEntry(id);
            if (!entry) continue;
            auto *row = new QTreeWidgetItem(head, {pathOfItem(*entry)});
            row->setData(0, Qt::UserRole, id);
        }
        head->setExpanded(true);
    }
    list->setCurrentItem(list->topLevelItem(0)->child(0));
    return list;
}

// Whether the row is an item whose lines can be compared with another one's.
bool mayCompareInGroup(const QTreeWidgetItem *row) {
    const auto entry = storeReadEntry(itemOf(row));
    return entry && isTextKind(entry->kind) && row->parent()->childCount() >= 2;
}

// The item and another one of its group.
void compareInGroup(const QTreeWidgetItem *row) {
    if (!mayCompareInGroup(row)) return;
    const QTreeWidgetItem *first = row->parent()->child(0);
    const QTreeWidgetItem *other = first == row ? row->parent()->child(1) : first;
    const CompareSource left = compareSourceOf(itemOf(other)), right = compareSourceOf(itemOf(row));
    if (!left.label.isEmpty() && !right.label.isEmpty()) compareSources(left, right);
}

}  // namespace

void showDuplicates() {
    const std::vector<Duplicates> found = findDuplicates();
    if (found.empty()) {
        tellUser(Text::duplicatesNone, {}, BoxIcon::information);
        return;
    }
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("duplicatesDialog"));
    dialog.setWindowTitle(textOf(Text::duplicatesTitle));
    auto *layout = new QVBoxLayout(&dialog);
    QTreeWidget *list = listOf(found);
    layout->addWidget(list);
    auto *buttons = new QHBoxLayout;
    auto *compare = new QPushButton(textOf(Text::arrivalsCompare));
    compare->setAutoDefault(false);
    compare->setToolTip(textOf(Text::tipDuplicatesCompare));
    buttons->addWidget(compare);
    buttons->addStretch();
    buttons->addWidget(closeButtons(&dialog));
    layout->addLayout(buttons);
    QObject::connect(compare, &QPushButton::clicked, &dialog, [list] { compareInGroup(list->currentItem()); });
    const auto follow = [=] { compare->setEnabled(mayCompareInGroup(list->currentItem())); };
    QObject::connect(list, &QTreeWidget::currentItemChanged, &dialog, follow);
    follow();
    ItemId chosen = noItem;  // to be shown in the tree
    QObject::connect(list, &QTreeWidget::itemActivated, &dialog, [&](const QTreeWidgetItem *row) {
        chosen = itemOf(row);
        if (chosen != noItem) dialog.accept();
    });
    dialog.resize(QSize(420, 420) * textScale());
    runDialog(dialog);
    if (chosen != noItem && storeReadEntry(chosen)) selectItem(chosen);
}

}  // namespace numalink
