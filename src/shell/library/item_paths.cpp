#include "shell/library/item_paths.h"

#include <QStringList>

#include "shell/parts/on_view.h"
#include "shell/parts/shell_texts.h"
#include "shell/parts/tree_refresh.h"
#include "shell/views/item_views.h"
#include "store/items/item_path.h"

namespace numalink {

QString pathOfItem(const ItemEntry &entry) {
    QStringList names;
    for (const std::string &name : storePathOf(entry)) names << nameToQt(name);
    return names.join(QLatin1Char('/'));
}

void showChangedItems() {
    refreshTree();
    if (viewItemId != noItem && storeReadEntry(viewItemId)) reopenView();
}

}  // namespace numalink
