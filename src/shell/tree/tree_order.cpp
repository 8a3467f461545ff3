#include "shell/tree/tree_order.h"

#include <algorithm>
#include <iterator>

#include "history/history.h"
#include "settings/settings_store.h"
#include "shell/parts/tree_refresh.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

// In the order of TreeOrder; the words lie in the settings.
constexpr const char *orderWords[] = {"name", "kind", "size", "time"};

std::uint64_t descending(std::uint64_t value) { return UINT64_MAX - value; }

}  // namespace

TreeOrder treeOrder() {
    const std::string word = settingsValue(setting::treeOrder);
    const auto *const found = std::ranges::find(orderWords, word);
    return found == std::end(orderWords) ? TreeOrder::name : static_cast<TreeOrder>(found - std::begin(orderWords));
}

void setTreeOrder(TreeOrder order) {
    settingsSetValue(setting::treeOrder, orderWords[static_cast<std::size_t>(order)]);
    settingsSave();
    refreshTree();
    if (order != TreeOrder::time) return;
    const std::vector<ItemTime> times = historyTimes();
    const ItemId waiting = storeIsReadOnly() ? noItem : storeTempFolder();
    std::size_t unknown = 0;
    for (const ItemEntry &item : storeListItems()) {
        const auto time = std::ranges::find(times, item.id, &ItemTime::id);
        const bool counts = !isFolderKind(item.kind) && item.parent != waiting;
        if (counts && (time == times.end() || time->time == 0)) unknown++;
    }
    if (unknown > 0) statusLine(StatusPart::item, Text::timesUnknown, {std::to_string(unknown)});
}

TreeRanks treeRanks(const std::vector<ItemEntry> &items) {
    TreeRanks ranks;
    const TreeOrder order = treeOrder();
    if (order == TreeOrder::name) return ranks;
    if (order == TreeOrder::time)
        for (const ItemTime &item : historyTimes()) ranks[item.id] = descending(item.time);
    for (const ItemEntry &item : items) {
        if (order == TreeOrder::kind) ranks[item.id] = item.kind;
        if (order == TreeOrder::size) ranks[item.id] = descending(item.dataSize);
        if (isFolderKind(item.kind)) ranks[item.id] = 0;
    }
    return ranks;
}

}  // namespace numalink
