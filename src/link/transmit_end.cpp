#include "link/transmit_end.h"

#include <vector>

#include "calculator/charset.h"
#include "link/conversation.h"
#include "link/notices.h"

namespace numalink {

namespace {

std::vector<ItemId> sentItems;  // of the conversation that runs

// A chain of parents longer than the table is a circle.
bool liesInTemp(ItemId id) {
    for (std::uint32_t steps = 0; steps <= storeSlotCount; steps++) {
        const auto entry = storeReadEntry(id);
        if (!entry) return false;
        if (entry->kind == kind::temporaryFolder) return true;
        id = entry->parent;
    }
    return false;
}

}  // namespace

std::optional<NextItem> nextToTransmit() {
    while (!conversationOver()) {
        const auto entry = transmitQueueFirst();
        if (!entry) return std::nullopt;
        NextItem next{.entry = *entry, .item = {}};
        if (storeReadItem(entry->id, next.item)) return next;
        transmitQueueRemove(entry->id);
        linkNotice(Text::queuedItemGone);
    }
    return std::nullopt;
}

void tellCannotGo(const NextItem &next, Refusal refusal) {
    transmitQueueRemove(next.entry.id);
    if (!conversationOver()) tellRefusal(refusal, next.item.name, BoxIcon::warning);
    dropInput();
}

void dropQueue() {
    if (conversationOver()) return;  // a stop or a lost cable keeps the queue
    const std::size_t count = transmitQueueDrop();
    if (count > 0) linkNotice(Text::queueDropped, {std::to_string(count)});
}

void tellSent(const NextItem &next) {
    sentItems.push_back(next.entry.id);
    transmitNoteSent(utf8FromCalculator(next.item.name));
    transmitQueueRemove(next.entry.id);
}

void clearSentFromTemp() {
    for (const ItemId id : sentItems)
        if (liesInTemp(id)) storeDelete(id);
    sentItems.clear();
}

}  // namespace numalink
