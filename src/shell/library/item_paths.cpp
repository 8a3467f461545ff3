#include "shell/library/item_paths.h"

#include "shell/parts/on_view.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "shell/views/item_views.h"

namespace numalink {

namespace {

constexpr int folderLimit = 50;  // of a path; a circle of folders ends there

}  // namespace

QString pathOfItem(const ItemEntry &entry) {
    QString path = nameToQt(entry.name);
    ItemId parent = entry.parent;
    for (int depth = 0; depth < folderLimit && parent != rootId; depth++) {
        const auto folder = storeReadEntry(parent);
        if (!folder) break;
        path.prepend(nameToQt(folder->name) + QLatin1Char('/'));
        parent = folder->parent;
    }
    return path;
}

void showChangedItems() {
    refreshTree();
    if (viewItemId != noItem && storeReadEntry(viewItemId)) reopenView();
}

}  // namespace numalink
