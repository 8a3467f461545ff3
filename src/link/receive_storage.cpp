#include "link/receive_storage.h"

#include <algorithm>

#include "calculator/charset.h"
#include "calculator/frames.h"
#include "link/notices.h"
#include "platform/clock.h"
#include "platform/letter_case.h"
#include "store/form_changes.h"
#include "store/item_store.h"
#include "telling/user_interface.h"

namespace numalink {

namespace {

ItemId standardFolderIfThere(ItemKind itemKind) {
    const ItemKind folderKind = standardFolderOfKind(itemKind);
    for (const ItemEntry &entry : storeListChildren(rootId))
        if (entry.kind == folderKind) return entry.id;
    return noItem;
}

bool hasGroupFolder(const Received &received) { return received.kind == kind::list && !received.group.empty(); }

ItemId groupFolderIfThere(const std::string &group, ItemId parent) {
    for (const ItemEntry &entry : storeListChildren(parent))
        if (isFolderKind(entry.kind) && equalWithoutCase(entry.name, group)) return entry.id;
    return noItem;
}

struct Place {
    ItemId parent = noItem;
    bool groupMade = false;
};

Place makePlace(const Received &received) {
    Place place{.parent = storeStandardFolder(standardFolderOfKind(received.kind))};
    if (place.parent == noItem || !hasGroupFolder(received)) return place;
    const ItemId group = groupFolderIfThere(received.group, place.parent);
    if (group != noItem) return {.parent = group};
    const NewItem folder{.name = received.group, .parent = place.parent, .kind = kind::folder, .head = {}, .data = {}};
    return {.parent = storeAddItem(folder), .groupMade = true};
}

ItemId sameItem(const Received &received, ItemId parent) {
    for (const ItemEntry &entry : storeListChildren(parent))
        if (entry.kind == received.kind && equalWithoutCase(entry.name, received.name)) return entry.id;
    return noItem;
}

// Blocks of different sorts may share a name: they are different things and both stay.
bool isOtherBlock(const Received &received, ItemId same) {
    StoredItem item;
    if (received.kind != kind::algebraBlock || same == noItem || !storeReadItem(same, item)) return false;
    if (item.head.size() <= algebraTypeOffset || received.head.size() <= algebraTypeOffset) return true;
    return item.head[algebraTypeOffset] != received.head[algebraTypeOffset];
}

void sayWhatHappened(const std::string &name, const std::string &storedName, bool replaced) {
    if (replaced) linkNotice(Text::itemReplaced, {utf8FromCalculator(storedName)});
    if (storedName != name) linkNotice(Text::itemStoredAs, {utf8FromCalculator(name), utf8FromCalculator(storedName)});
}

}  // namespace

std::string nameOfNow() {
    for (;;) {
        const std::string date = clockPort.localDate();
        std::string now = date;
        now.append(" ").append(clockPort.localTime());
        if (date == clockPort.localDate()) return now;
    }
}

bool receivedNameTaken(const Received &received) {
    ItemId parent = standardFolderIfThere(received.kind);
    if (parent != noItem && hasGroupFolder(received)) parent = groupFolderIfThere(received.group, parent);
    return parent != noItem && sameItem(received, parent) != noItem;
}

bool storeReceived(const Received &received) {
    const Place place = makePlace(received);
    if (place.parent == noItem) return false;
    const ItemId same = sameItem(received, place.parent);
    const bool keepsSame = isOtherBlock(received, same);
    const NewItem item{.name = received.name,
                       .parent = place.parent,
                       .kind = received.kind,
                       .head = received.head,
                       .data = received.data,
                       .whenTaken = keepsSame ? NameTaken::nextFreeName : NameTaken::replaceSameKind};
    std::string storedName = received.name;
    const NamedCause cause(FormCause::received);
    const ItemId id = storeAddItem(item, &storedName);
    if (id == noItem) {
        if (place.groupMade) storeDropFolder(place.parent);
        userInterface.refreshTree();  // the standard folder may have been made
        return false;
    }
    sayWhatHappened(received.name, storedName, same != noItem && !keepsSame);
    userInterface.itemReceived(id);
    return true;
}

}  // namespace numalink
