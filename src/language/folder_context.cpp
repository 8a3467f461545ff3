#include "language/folder_context.h"

#include "platform/letter_case.h"
#include "settings/settings_store.h"
#include "store/item_store.h"

namespace numalink {

ProblemContext problemContextAlone() {
    ProblemContext context;
    context.isForCfx = !equalWithoutCase(settingsValue(setting::linkType), "algebra");
    context.removesColor = settingsInt(setting::removeColor) != 0;
    return context;
}

ProblemContext problemContextOf(ItemId item) {
    ProblemContext context = problemContextAlone();
    const auto entry = storeReadEntry(item);
    if (!entry) return context;
    context.name = entry->name;
    context.knowsFolder = true;
    for (const ItemEntry &sibling : storeListChildren(entry->parent)) {
        StoredItem program;
        if (sibling.id == item || !isTextKind(sibling.kind) || !storeReadItem(sibling.id, program)) continue;
        context.folder.push_back(summaryOf(program.name, structureOf(program.data)));
    }
    return context;
}

}  // namespace numalink
