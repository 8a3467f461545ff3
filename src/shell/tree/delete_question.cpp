#include "shell/tree/delete_question.h"

#include "shell/parts/shell_texts.h"
#include "shell/tree/several.h"
#include "shell/tree/tree_rules.h"
#include "telling/tell_user.h"

namespace numalink {

bool askDelete(const ItemEntry &item) {
    std::string body = wording(Text::confirmDelete) + "\n\n" + utf8FromCalculator(item.name);
    if (isFolderKind(item.kind)) {
        const int count = countBelow(storeListItems(), item.id);
        body.append("\n").append(wording(Text::folderHolds, {std::to_string(count)}));
    }
    const Box box{.bodyText = Text::confirmDelete,
                  .body = body,
                  .title = programTitle,
                  .buttons = BoxButtons::okCancel,
                  .arguments = {}};
    return userInterface.messageBox(box) == Answer::ok;
}

bool askDeleteSeveral(const std::vector<ItemId> &ids) {
    const std::vector<ItemEntry> items = storeListItems();
    int below = 0;
    for (const ItemId id : ids) below += countBelow(items, id);
    const std::string count = std::to_string(ids.size());
    std::string body = wording(Text::confirmDeleteSeveral, {count}) + "\n\n" + namesOfSeveral(ids);
    if (below > 0) body.append("\n").append(wording(Text::foldersHold, {std::to_string(below)}));
    const Box box{.bodyText = Text::confirmDeleteSeveral,
                  .body = body,
                  .title = programTitle,
                  .buttons = BoxButtons::okCancel,
                  .arguments = {count}};
    return userInterface.messageBox(box) == Answer::ok;
}

}  // namespace numalink
