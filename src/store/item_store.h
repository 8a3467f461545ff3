// The library: every operation on stored items. One file, storage.dat, open and locked from storeOpen to storeClose.
// Names are calculator codes, at most 52; longer ones are cut. Names compare with A to Z folded, nothing else.
// All operations may be called on any thread: each holds the store's one lock for its whole length, and tells the
// user only after it has let go. Each is one change: when it returns success, the change is on the disk; when it fails,
// or the machine dies meanwhile, the library is as it was. What fails tells its cause itself (a box).
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "calculator/item_kinds.h"
#include "platform/bytes.h"

namespace numalink {

inline constexpr std::uint32_t storeSlotCount = 2000;
inline constexpr std::size_t storeNameLimit = 52;
inline constexpr std::uint32_t storeNewestFormat = 1000;
inline constexpr std::uint32_t folderOpenFlag = 1;  // bit 0 of a folder's flags

// The head of a record, without its payloads.
struct ItemEntry {
    ItemId id = noItem;
    ItemId parent = rootId;
    ItemKind kind = kind::unknown;
    std::uint32_t flags = 0;
    std::string name;
    std::uint32_t headSize = 0;
    std::uint32_t dataSize = 0;
};

struct StoredItem : ItemEntry {
    Bytes head;  // first payload
    Bytes data;  // second payload
};

// What an add does when the name is taken under the parent.
enum class NameTaken {
    replaceSameKind,  // the item of the same kind and name goes, once the new one is safe; else the next free name
    nextFreeName,     // never replaces: "ABC 2", for programs within 8 characters
    keepBoth          // two items of one name: the temporary folder only
};

struct NewItem {
    std::string name;
    ItemId parent = rootId;
    ItemKind kind = kind::unknown;
    Bytes head;
    Bytes data;
    NameTaken whenTaken = NameTaken::replaceSameKind;
    std::uint32_t flags = 0;  // folders only
};

struct ItemMove {
    ItemId id = noItem;
    ItemId newParent = rootId;
};

// Where an item is to stand, and under which name; an empty one is that which it has.
struct ItemPlacing {
    ItemId id = noItem;
    ItemId newParent = rootId;
    std::string name;
};

// What becomes of a library whose file is missing or empty: it is begun anew unless daily copies of it lie beside; it
// is begun in any case; it never is.
enum class WhenEmptied { refuse, begin, neverBegin };
// False when the library can't be used, with the cause told. A library that some other program holds gives false
// after nothing but its box. One that this user or its disk doesn't let be written is opened for reading: each change
// of it is refused, and tells why.
bool storeOpen(WhenEmptied whenEmptied = WhenEmptied::refuse);
bool storeIsEmptied();  // whether an opening would be refused for that; while closed
// Moves the records together, cuts the file at its end and lets go of it. Harmless when closed.
void storeClose();
bool storeIsOpen();
bool storeIsReadOnly();  // open, and only to be read
bool storeWriteHead();
// True when storeOpen found damage: sound records are usable, the rest is left as it lies.
bool storeIsDamaged();

int storeFindSlot(ItemId id);  // -1 when there is none
// Reading with too little memory is told, and gives what an absent item or an empty library would.
std::optional<ItemEntry> storeReadEntry(ItemId id);
// False when there is no such item, or it can't be read whole (told); item is then untouched.
bool storeReadItem(ItemId id, StoredItem &item);
std::vector<ItemEntry> storeListItems();                  // all, by rising id, in one hold of the lock
std::vector<ItemEntry> storeListChildren(ItemId parent);  // by rising id
ItemId storeNextId();

// The id of the new item, or noItem when it was refused (told): a full table, no such parent folder, no room.
// With renamed given, it tells the name under which the item came to stand.
ItemId storeAddItem(const NewItem &item, std::string *renamed = nullptr);
// The same for many, in one change that the disk is waited for once: all of them or none. Names stay as they are, taken
// or not, as with keepBoth. Their ids in the same order; empty when refused (told).
std::vector<ItemId> storeAddItems(const std::vector<NewItem> &items);
// Replaces name, parent, kind and payloads of an item that exists, under its own id, and nothing else.
bool storeWriteItem(ItemId id, const NewItem &item);
bool storeRewriteHead(ItemId id, ByteView head);  // in place; refused unless exactly headSize bytes
// With head given, the item's first payload is replaced too, in the same change; refused unless exactly headSize bytes.
bool storeRename(ItemId id, std::string_view name, ByteView head = {});
bool storeMove(ItemId id, ItemId newParent);  // refused for a folder into itself or below itself
// Many at once, all of them or none; refused with a folder among several.
bool storeMoveItems(const std::vector<ItemMove> &moves);
// Moves items, some of them under other names, which programs get in their heads too, and takes out those of leaving,
// in one change: all of it or nothing. Refused with a folder among those that move.
bool storePlaceItems(const std::vector<ItemPlacing> &placings, std::span<const ItemId> leaving);
bool storeSetFlags(ItemId id, std::uint32_t value);
std::uint32_t storeGetFlags(ItemId id);              // 0 when there is no such item
bool storeDelete(ItemId id);                         // with all that a folder holds
bool storeDeleteItems(std::span<const ItemId> ids);  // the same for many at once, all of them or none
bool storeDropFolder(ItemId id);                     // only one that holds nothing, and not to be taken back
// Takes back deletes and replacements: the items of leaving go, and these come back as they were, under their own ids
// and in this order. Refused when an id is in use, or a parent is neither there nor in the list.
bool storePutBack(const std::vector<StoredItem> &items, const std::vector<ItemId> &leaving = {});
// The library's file as it stands, whole and on the disk at path, in place of what was there. Not told when it fails.
bool storeCopyTo(const std::string &path);

ItemId storeFindItem(std::string_view name, ItemId parent);  // lowest id of that name, noItem when none
bool storeItemExists(std::string_view name, ItemId parent);
// The name itself when it is free under parent, else the next free one, within the limit of the kind.
// alsoTaken names what else isn't free; it mustn't call the store.
std::string storeFreeName(std::string_view name, ItemId parent, ItemKind itemKind,
                          const std::function<bool(std::string_view)> &alsoTaken = {});

// "/A/B/": folders only, by name without case. noItem when missing and not to be created; "" and "/" give rootId.
ItemId storeResolvePath(std::string_view path, bool create);
ItemId storeStandardFolder(ItemKind folderKind);  // found by kind, else made; noItem for kinds that are none
ItemId storeTempFolder();                         // the temporary folder, made when absent
// Deletes every temporary folder and makes one; with something of kept in it, all but that.
bool storeResetTemp(const std::vector<ItemId> &kept = {});
// The same, but tells of nothing: should it fail, the next reset or start does it.
void storeTidyTemp(const std::vector<ItemId> &kept = {});

}  // namespace numalink
