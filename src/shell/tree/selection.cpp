#include "shell/tree/selection.h"

#include "shell/editor/program_status.h"
#include "shell/parts/command_states.h"
#include "shell/parts/on_view.h"
#include "shell/parts/selected_item.h"
#include "shell/tree/item_tree.h"
#include "shell/tree/tree_filter.h"
#include "shell/views/item_views.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

struct Selection {
    bool selecting = false;  // selectItem is at work: it isn't entered again
    ItemKind kindSelected = kind::none;
    std::vector<ItemKind> kinds;  // of all that are selected
    std::vector<ItemId> kept;
    bool straysTold = false;  // once a run
};
Selection state;

void noteKinds() {
    state.kinds.clear();
    for (const ItemId id : selectedItemIds())
        if (const auto entry = storeReadEntry(id)) state.kinds.push_back(entry->kind);
}

void tellSeveral() {
    if (severalSelected()) statusLine(StatusPart::item, Text::itemsSelected, {std::to_string(state.kinds.size())});
}

// In the status bar, in the place of how many are selected.
void tellViewed() {
    if (isTextKind(viewKind))
        programToStatus(viewItemId);
    else
        reopenView();
}

void markAmong(ItemId id, const std::vector<ItemId> &beside) {
    markSelected(id, beside);
    state.kept = beside;
    const std::optional<ItemEntry> entry = storeReadEntry(selectedItemId());
    state.kindSelected = entry ? entry->kind : kind::none;
    noteKinds();
    commandStatesChanged();
    tellSeveral();
}

void tellStrays(int strays) {
    if (strays == 0 || state.straysTold) return;
    state.straysTold = true;
    tellUser(Text::itemWithoutFolder);
}

}  // namespace

ItemKind selectedKind() { return state.kindSelected; }
const std::vector<ItemKind> &selectedKinds() { return state.kinds; }
std::vector<ItemId> &keptSelected() { return state.kept; }
bool severalSelected() { return state.kinds.size() > 1; }

bool selectItem(ItemId id) { return selectAmong(id, {}); }

bool selectAmong(ItemId id, const std::vector<ItemId> &beside) {
    if (state.selecting) return false;
    if (id != noItem && id == selectedItemId() && viewItemId == id) {
        state.kept = beside;
        const bool wereSeveral = severalSelected();
        if (wereSeveral || !beside.empty()) markAmong(id, beside);
        if (wereSeveral && !severalSelected()) tellViewed();
        return true;
    }
    state.selecting = true;
    const bool left = leaveCurrentView();
    if (left) {
        markAmong(id, beside);
        if (storeReadEntry(selectedItemId())) openSelectedItem();
        tellSeveral();
    }
    state.selecting = false;
    return left;
}

void followSeveral() {
    if (!severalSelected()) return;
    noteKinds();
    commandStatesChanged();
}

void showSelectedAgain() {
    selectAmong(selectedItemId(), severalSelected() ? selectedItemIds() : std::vector<ItemId>());
}

void refreshTreeNow() {
    const ItemId selected = selectedItemId();
    const int strays = showLibraryInTree();
    applyTreeFilter();
    if (viewItemId != noItem && treeEntryOf(viewItemId) == nullptr) viewedItemGone();
    if (selected != noItem && treeEntryOf(selected) == nullptr) selectItem(noItem);
    followSeveral();
    tellStrays(strays);
}

void forgetSelection() { state = {}; }

}  // namespace numalink
