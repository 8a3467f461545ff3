#include "shell/parts/selected_item.h"

#include <QTreeWidget>

#include "shell/parts/main_widgets.h"

namespace numalink {

ItemId idOfEntry(const QTreeWidgetItem *entry) {
    return entry == nullptr ? noItem : entry->data(0, Qt::UserRole).toUInt();
}

// Qt makes the first entry current when the tree gets the focus, without selecting it: that is no selection.
QTreeWidgetItem *selectedEntry() {
    QTreeWidgetItem *entry = treeView != nullptr ? treeView->currentItem() : nullptr;
    return entry != nullptr && entry->isSelected() ? entry : nullptr;
}

ItemId selectedItemId() { return idOfEntry(selectedEntry()); }

}  // namespace numalink
