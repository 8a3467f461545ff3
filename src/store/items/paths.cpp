// Finding by name and by path, and the folders that the program makes for itself.
#include "calculator/charset.h"
#include "store/file/state.h"
#include "store/items/item_path.h"
#include "telling/texts.h"

namespace numalink {

namespace {

constexpr std::string_view pathMark = "/";
constexpr int shownDepth = 50;  // folders of a path that is told

// The first folder of the table with that name under parent, or noItem.
ItemId folderNamed(std::string_view name, ItemId parent) REQUIRES_LOCK(storeLock) {
    for (const Slot &slot : storeState.slots)
        if (slot.sound && isFolderKind(slot.head.kind) && isNamed(slot.head, name, parent)) return slot.head.id;
    return noItem;
}

NewItem newFolder(std::string_view name, ItemId parent, ItemKind folderKind) {
    NewItem folder;
    folder.name = name;
    folder.parent = parent;
    folder.kind = folderKind;
    folder.whenTaken = NameTaken::nextFreeName;
    folder.flags = folderOpenFlag;
    return folder;
}

// Takes the next name off the path.
std::string_view takeComponent(std::string_view &path) {
    const std::size_t end = path.find(pathMark);
    const std::string_view name = path.substr(0, end);
    path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
    return storedName(name);
}

Fault resolvePath(std::string_view path, bool create, ItemId &id) REQUIRES_LOCK(storeLock) {
    ItemId parent = rootId;
    std::vector<std::string_view> missing;  // from the first name that isn't there
    while (!path.empty()) {
        const std::string_view name = takeComponent(path);
        if (name.empty()) continue;  // two "/" side by side name nothing
        const ItemId found = missing.empty() ? folderNamed(name, parent) : noItem;
        if (found == noItem) missing.push_back(name);
        if (found != noItem) parent = found;
    }
    if (!missing.empty()) return create ? addFolders(parent, missing, id) : Fault::absent;
    id = parent;
    return Fault::none;
}

std::size_t slotOfKind(ItemKind itemKind) REQUIRES_LOCK(storeLock) {
    return lowestSlot([&](const ItemHeader &head) { return head.kind == itemKind; });
}

Fault standardFolder(ItemKind folderKind, ItemId &id) REQUIRES_LOCK(storeLock) {
    const Text name = standardFolderName(folderKind);
    if (name == Text::none) return Fault::absent;
    const std::size_t slot = slotOfKind(folderKind);
    if (slot == noSlot) return addItem(newFolder(calculatorName(wording(name)), rootId, folderKind), id);
    id = storeState.slots[slot].head.id;
    return Fault::none;
}

Fault tempFolder(ItemId &id) REQUIRES_LOCK(storeLock) {
    std::size_t slot = slotOfKind(kind::temporaryFolder);
    if (slot == noSlot) {
        if (const Fault fault = resetTemp(); fault != Fault::none) return fault;
        slot = slotOfKind(kind::temporaryFolder);
    }
    id = storeState.slots[slot].head.id;
    return Fault::none;
}

// The id that find gives, or noItem with the cause told once the lock is free.
template <typename Find>
ItemId foundOrTold(Find find) {
    ItemId id = noItem;
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return find(id); })) ? id : noItem;
}

}  // namespace

ItemId storeFindItem(std::string_view name, ItemId parent) {
    const HoldLock hold(storeLock);
    const std::size_t slot =
        lowestSlot([&](const ItemHeader &head) { return isNamed(head, storedName(name), parent); });
    return slot == noSlot ? noItem : storeState.slots[slot].head.id;
}

bool storeItemExists(std::string_view name, ItemId parent) { return storeFindItem(name, parent) != noItem; }

std::string storeFreeName(std::string_view name, ItemId parent, ItemKind itemKind,
                          const std::function<bool(std::string_view)> &alsoTaken) {
    const HoldLock hold(storeLock);
    return freeName(name, parent, itemKind, alsoTaken);
}

std::vector<std::string> storePathOf(const ItemEntry &entry) {
    std::vector<std::string> names = {entry.name};
    ItemId parent = entry.parent;
    for (int depth = 0; depth < shownDepth && parent != rootId; depth++) {
        const auto folder = storeReadEntry(parent);
        if (!folder) break;
        names.insert(names.begin(), folder->name);
        parent = folder->parent;
    }
    return names;
}

ItemId storeResolvePath(std::string_view path, bool create) {
    return foundOrTold([&](ItemId &id) REQUIRES_LOCK(storeLock) { return resolvePath(path, create, id); });
}

ItemId storeStandardFolder(ItemKind folderKind) {
    return foundOrTold([&](ItemId &id) REQUIRES_LOCK(storeLock) { return standardFolder(folderKind, id); });
}

ItemId storeTempFolder() {
    return foundOrTold([](ItemId &id) REQUIRES_LOCK(storeLock) { return tempFolder(id); });
}

void storeTidyTemp(const std::vector<ItemId> &kept) {
    withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return resetTemp(kept); });
}

bool storeResetTemp(const std::vector<ItemId> &kept) {
    return tellStoreFault(withStoreLocked([&]() REQUIRES_LOCK(storeLock) { return resetTemp(kept); }));
}

}  // namespace numalink
