#include "shell/tree/selection.h"

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
    bool straysTold = false;  // once a run
};
Selection state;

void tellStrays(int strays) {
    if (strays == 0 || state.straysTold) return;
    state.straysTold = true;
    tellUser(Text::itemWithoutFolder);
}

}  // namespace

ItemKind selectedKind() { return state.kindSelected; }

bool selectItem(ItemId id) {
    if (state.selecting) return false;
    if (id != noItem && id == selectedItemId() && viewItemId == id) return true;
    state.selecting = true;
    const bool left = leaveCurrentView();
    if (left) {
        markSelected(id);
        const std::optional<ItemEntry> entry = storeReadEntry(selectedItemId());
        state.kindSelected = entry ? entry->kind : kind::none;
        commandStatesChanged();
        if (entry) openSelectedItem();
    }
    state.selecting = false;
    return left;
}

void showSelectedAgain() { selectItem(selectedItemId()); }

void refreshTreeNow() {
    const ItemId selected = selectedItemId();
    const int strays = showLibraryInTree();
    applyTreeFilter();
    if (viewItemId != noItem && treeEntryOf(viewItemId) == nullptr) viewedItemGone();
    if (selected != noItem && treeEntryOf(selected) == nullptr) selectItem(noItem);
    tellStrays(strays);
}

void forgetSelection() { state = {}; }

}  // namespace numalink
