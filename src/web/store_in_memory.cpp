#include "web/store_in_memory.h"

#include "store/item_store.h"

namespace numalink {

namespace {

constexpr ItemId pageFolder = 0;
std::vector<BundledItem> items;

ItemEntry entryOf(std::size_t index) {
    const BundledItem &item = items[index];
    return {.id = firstPageItem + static_cast<ItemId>(index),
            .parent = pageFolder,
            .kind = item.kind,
            .name = item.name,
            .headSize = static_cast<std::uint32_t>(item.head.size()),
            .dataSize = static_cast<std::uint32_t>(item.data.size())};
}

bool exists(ItemId id) { return id >= firstPageItem && id - firstPageItem < items.size(); }

}  // namespace

void setPageItems(std::vector<BundledItem> newItems) { items = std::move(newItems); }
const std::vector<BundledItem> &pageItems() { return items; }

std::optional<ItemEntry> storeReadEntry(ItemId id) {
    return exists(id) ? std::optional(entryOf(id - firstPageItem)) : std::nullopt;
}

bool storeReadItem(ItemId id, StoredItem &item) {
    if (!exists(id)) return false;
    static_cast<ItemEntry &>(item) = entryOf(id - firstPageItem);
    item.head = items[id - firstPageItem].head;
    item.data = items[id - firstPageItem].data;
    return true;
}

std::vector<ItemEntry> storeListChildren(ItemId parent) {
    std::vector<ItemEntry> children;
    for (std::size_t i = 0; parent == pageFolder && i < items.size(); i++) children.push_back(entryOf(i));
    return children;
}

}  // namespace numalink
