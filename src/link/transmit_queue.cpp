#include "link/transmit_queue.h"

#include <algorithm>
#include <atomic>
#include <span>
#include <utility>

#include "calculator/charset.h"
#include "link/attention.h"
#include "link/link_family.h"
#include "link/notices.h"
#include "platform/lock.h"
#include "store/item_store.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr std::size_t refusalsTold = 8;  // boxes about one folder

struct TransmitQueue {
    std::vector<QueuedItem> entries;
    std::vector<ItemId> dropped;  // by the last failure
};

struct Sent {
    std::string last;  // UTF-8
    std::size_t count = 0;
};

Lock queueLock;
TransmitQueue queue GUARDED_BY(queueLock);
Sent sent GUARDED_BY(queueLock);
std::atomic<bool> conversationRuns = false;

std::vector<QueuedItem> entriesNow() {
    const HoldLock hold(queueLock);
    return queue.entries;
}

bool append(ItemId id) {
    const HoldLock hold(queueLock);
    if (std::ranges::find(queue.entries, id, &QueuedItem::id) != queue.entries.end()) return true;
    if (queue.entries.size() >= transmitQueueLimit) return false;
    queue.entries.push_back({.id = id});
    return true;
}

enum class Queued { added, refused, full };

struct Walk {
    std::vector<ItemId> above;  // the folders on the way down, so that a circle in a damaged library ends
    std::size_t refused = 0;
};

Queued queueSingle(ItemId id, Walk &walk) {
    StoredItem item;
    if (!storeReadItem(id, item)) return Queued::refused;
    const Refusal refusal = outgoingRefusal(item, linkFamily());
    if (refusal != Refusal::none) {
        if (++walk.refused <= refusalsTold) tellRefusal(refusal, item.name, BoxIcon::none);
        return Queued::refused;
    }
    if (append(id)) return Queued::added;
    tellUser(Text::queueFull, {utf8FromCalculator(item.name)});
    return Queued::full;
}

Queued queueFolder(ItemId folder, Walk &walk) {
    if (std::ranges::find(walk.above, folder) != walk.above.end()) return Queued::added;
    walk.above.push_back(folder);
    Queued result = Queued::added;
    for (const ItemEntry &child : storeListChildren(folder)) {
        result = isFolderKind(child.kind) ? queueFolder(child.id, walk) : queueSingle(child.id, walk);
        if (result == Queued::full) break;
    }
    walk.above.pop_back();
    return result == Queued::full ? Queued::full : Queued::added;
}

bool askFor(QueuedItem &entry) {
    StoredItem item;
    const auto stored = storeReadEntry(entry.id);
    if (!stored || (stored->kind != kind::picture && stored->kind != kind::backup)) return true;
    if (!storeReadItem(entry.id, item)) return true;  // the conversation passes over it
    if (item.kind == kind::backup) return askBackupConsent(entry, item.name);
    return askPictureSlotOf(entry, item.name, item.head);
}

}  // namespace

bool transmitAvailable() { return true; }

bool queueItem(ItemId id) { return queueItems({id}); }

bool queueItems(const std::vector<ItemId> &ids) {
    Walk walk;
    Queued result = Queued::refused;
    for (const ItemId id : ids) {
        const auto entry = storeReadEntry(id);
        if (!entry) continue;
        result = isFolderKind(entry->kind) ? queueFolder(id, walk) : queueSingle(id, walk);
        if (result == Queued::full) break;
    }
    if (walk.refused > refusalsTold)
        tellMore(Text::kindNotTransferable, Text::refusedMore, {std::to_string(walk.refused - refusalsTold)},
                 BoxIcon::none);
    userInterface.transmitQueueChanged();
    return result == Queued::added;
}

void tellRefusal(Refusal refusal, const std::string &name, BoxIcon icon) {
    constexpr Text causes[] = {Text::refusedKind, Text::refusedKind, Text::refusedShort, Text::refusedLong};
    tellMore(Text::kindNotTransferable, causes[static_cast<std::size_t>(refusal)], {utf8FromCalculator(name)}, icon);
}

void tellWhenTooLong(ItemId id) {
    StoredItem item;
    if (storeReadItem(id, item) && outgoingRefusal(item, linkFamily()) == Refusal::tooLong)
        tellUser(Text::programTooLong, {utf8FromCalculator(item.name)});
}

bool askBackupConsent(QueuedItem &entry, const std::string &name) {
    if (entry.confirmed) return true;
    const std::vector<std::string> names = {utf8FromCalculator(name)};
    entry.confirmed = tellComposed(Text::askBackup, wording(Text::askBackup, names), names, BoxIcon::warning,
                                   BoxButtons::okCancel) == Answer::ok;
    return entry.confirmed;
}

bool askPictureSlotOf(QueuedItem &entry, const std::string &name, ByteView head) {
    if (const auto slot = slotOfPictureName(name)) entry.slot = *slot;
    if (entry.slot == 0) entry.slot = userInterface.askPictureSlot(utf8FromCalculator(name), slotOfPictureHead(head));
    return entry.slot >= 1 && entry.slot <= 6;
}

bool beginTransmit() {
    for (QueuedItem &entry : entriesNow()) {
        const int slot = entry.slot;
        const bool confirmed = entry.confirmed;
        if (!askFor(entry)) {
            const auto stored = storeReadEntry(entry.id);
            if (stored && stored->kind == kind::picture) return false;  // closed: nothing is sent, the queue stays
            transmitQueueRemove(entry.id);
            continue;
        }
        if (slot != entry.slot || confirmed != entry.confirmed) transmitQueueAnswered(entry);
    }
    if (transmitQueueCount() == 0) return false;
    attentionWish();
    userInterface.transmitQueueChanged();
    return true;
}

void queueAndTell(const std::vector<ItemId> &ids) {
    queueItems(ids);
    if (!attentionIsOut() && !conversationRuns) tellWaiting();
}

bool queueAndBegin(const std::vector<ItemId> &ids) {
    queueItems(ids);
    if (attentionIsOut() || beginTransmit()) return true;
    if (!conversationRuns) tellWaiting();
    return false;
}

std::string waitingText() {
    constexpr std::size_t namesTold = 3;
    const std::vector<ItemId> ids = transmitQueueIds();
    if (ids.empty()) return {};
    std::string names;
    for (const ItemId id : std::span(ids).first(std::min(ids.size(), namesTold))) {
        const auto entry = storeReadEntry(id);
        if (!names.empty()) names += ", ";
        names += entry ? utf8FromCalculator(entry->name) : "?";
    }
    if (ids.size() > namesTold) names += ", ...";
    return wording(Text::queueWaits, {std::to_string(ids.size()), names});
}

void tellWaiting() {
    const std::string text = waitingText();
    if (text.empty()) return;
    linkNoticeShown();
    userInterface.statusText(StatusPart::link, Text::queueWaits, text);
}

bool transmitCanBegin() { return transmitQueueCount() > 0 && !attentionIsOut() && !conversationRuns; }

std::size_t transmitQueueCount() {
    const HoldLock hold(queueLock);
    return queue.entries.size();
}

std::vector<ItemId> transmitQueueHeld() {
    const HoldLock hold(queueLock);
    std::vector<ItemId> ids = queue.dropped;
    for (const QueuedItem &entry : queue.entries) ids.push_back(entry.id);
    return ids;
}

std::vector<ItemId> transmitQueueIds() {
    std::vector<ItemId> ids;
    for (const QueuedItem &entry : entriesNow()) ids.push_back(entry.id);
    return ids;
}

void transmitQueueRemove(ItemId id) {
    {
        const HoldLock hold(queueLock);
        const auto found = std::ranges::find(queue.entries, id, &QueuedItem::id);
        if (found != queue.entries.end()) queue.entries.erase(found);
    }
    userInterface.transmitQueueChanged();
}

void transmitQueueClear() {
    {
        const HoldLock hold(queueLock);
        queue = {};
    }
    userInterface.transmitQueueChanged();
}

std::size_t transmitDroppedCount() {
    const HoldLock hold(queueLock);
    return queue.dropped.size();
}

std::size_t transmitQueueAgain() {
    std::vector<ItemId> dropped;
    {
        const HoldLock hold(queueLock);
        dropped.swap(queue.dropped);
    }
    std::size_t count = 0;
    for (const ItemId id : dropped)
        if (queueItem(id)) count++;
    userInterface.transmitQueueChanged();
    return count;
}

void transmitDeadlineTest() {
    if (!attentionIsOverdue()) return;
    const std::size_t count = transmitQueueDrop();
    std::string text = wording(Text::noAnswer);
    if (count > 0) text += ". " + wording(Text::queueDropped, {std::to_string(count)});
    linkNoticeShown();
    userInterface.statusText(StatusPart::link, Text::noAnswer, text);
    userInterface.transmitQueueChanged();
}

std::optional<QueuedItem> transmitQueueFirst() {
    const HoldLock hold(queueLock);
    return queue.entries.empty() ? std::nullopt : std::optional(queue.entries.front());
}

std::size_t transmitQueueDrop() {
    std::size_t count = 0;
    {
        const HoldLock hold(queueLock);
        count = queue.entries.size();
        if (count == 0) return 0;
        queue.dropped.clear();
        for (const QueuedItem &entry : queue.entries) queue.dropped.push_back(entry.id);
        queue.entries.clear();
    }
    userInterface.transmitQueueChanged();
    return count;
}

void transmitQueueAnswered(const QueuedItem &item) {
    const HoldLock hold(queueLock);
    for (QueuedItem &entry : queue.entries)
        if (entry.id == item.id) entry = item;
}

void transmitConversation(bool runs) {
    conversationRuns = runs;
    userInterface.transmitQueueChanged();
}

bool transmitConversationRuns() { return conversationRuns; }

void transmitNoteSent(const std::string &utf8Name) {
    const HoldLock hold(queueLock);
    sent = {utf8Name, sent.count + 1};
}

std::string transmitSentWords() {
    if (conversationRuns) return {};
    Sent told;
    {
        const HoldLock hold(queueLock);
        told = std::exchange(sent, {});
    }
    if (told.count == 0) return {};
    return told.count == 1 ? wording(Text::itemSent, {told.last})
                           : wording(Text::itemsSent, {std::to_string(told.count)});
}

}  // namespace numalink
