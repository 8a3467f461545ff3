#include "shell/tree/tree_order.h"

#include "history/history.h"
#include "shell/parts/tree_refresh.h"

namespace numalink {

namespace {

TreeOrder state = TreeOrder::name;

std::uint64_t descending(std::uint64_t value) { return UINT64_MAX - value; }

}  // namespace

TreeOrder treeOrder() { return state; }

void setTreeOrder(TreeOrder order) {
    state = order;
    refreshTree();
}

void forgetTreeOrder() { state = TreeOrder::name; }

TreeRanks treeRanks(const std::vector<ItemEntry> &items) {
    TreeRanks ranks;
    if (state == TreeOrder::name) return ranks;
    if (state == TreeOrder::time)
        for (const ItemTime &item : historyTimes()) ranks[item.id] = descending(item.time);
    for (const ItemEntry &item : items) {
        if (state == TreeOrder::kind) ranks[item.id] = item.kind;
        if (state == TreeOrder::size) ranks[item.id] = descending(item.dataSize);
        if (isFolderKind(item.kind)) ranks[item.id] = 0;
    }
    return ranks;
}

}  // namespace numalink
