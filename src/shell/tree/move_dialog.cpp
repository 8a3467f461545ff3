#include "shell/tree/move_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QPushButton>
#include <QVBoxLayout>
#include <map>

#include "shell/parts/dialog_parts.h"
#include "shell/parts/fonts.h"
#include "shell/parts/main_widgets.h"
#include "shell/parts/open_windows.h"
#include "shell/parts/scale.h"
#include "shell/parts/selected_item.h"
#include "shell/parts/shell_texts.h"
#include "shell/tree/item_moves.h"
#include "shell/tree/selection.h"
#include "shell/tree/several.h"
#include "shell/tree/tree_rules.h"
#include "store/item_store.h"

namespace numalink {

namespace {

// Folders that take the items, in the order of the tree, with the names of those above them.
void listFolders(QListWidget *list, const std::vector<ItemId> &ids) {
    std::map<ItemId, QString> paths;
    for (const TreeEntry &entry : treeContent(storeListItems()).entries) {
        if (!isFolderKind(entry.kind)) continue;
        const QString above = paths[entry.shownUnder];
        const QString path = above.isEmpty() ? nameToQt(entry.name) : above + QLatin1Char('/') + nameToQt(entry.name);
        paths[entry.id] = path;
        if (!canMoveAll(ids, entry.id)) continue;
        auto *row = new QListWidgetItem(path, list);
        row->setData(Qt::UserRole, entry.id);
    }
    list->setCurrentRow(0);
}

ItemId askFolder(const std::vector<ItemId> &ids, const QString &words) {
    QDialog dialog(mainWindow);
    dialog.setObjectName(QStringLiteral("moveDialog"));
    dialog.setWindowTitle(textOf(Text::moveTitle));
    auto *list = new QListWidget;
    list->setFont(treeFont());
    list->setAccessibleName(words);
    list->setToolTip(words.toHtmlEscaped());
    listFolders(list, ids);
    auto *label = new QLabel(words);
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(list);
    QDialogButtonBox *buttons = dialogButtons(&dialog);
    buttons->button(QDialogButtonBox::Ok)->setEnabled(list->count() > 0);
    QObject::connect(list, &QListWidget::itemActivated, &dialog, &QDialog::accept);
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(label);
    layout->addWidget(list);
    layout->addWidget(buttons);
    dialog.resize(dialog.sizeHint().expandedTo(QSize(320, 320) * textScale()));
    list->setFocus();
    if (runDialog(dialog) != QDialog::Accepted || list->currentItem() == nullptr) return noItem;
    return list->currentItem()->data(Qt::UserRole).toUInt();
}

}  // namespace

void moveSelectedItem() {
    const std::vector<ItemId> ids = selectedOutermost();
    if (severalSelected()) {
        const ItemId folder = askFolder(ids, textOf(Text::moveFoldersSeveral, {std::to_string(ids.size())}));
        if (folder != noItem) moveSeveral(ids, folder);
        return;
    }
    const std::optional<ItemEntry> item = storeReadEntry(selectedItemId());
    if (!item) return;
    const ItemId folder = askFolder({item->id}, textOf(Text::moveFolders, {utf8FromCalculator(item->name)}));
    if (folder != noItem) moveDropped(item->id, folder);
}

}  // namespace numalink
