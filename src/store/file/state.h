// What the files of the store share: the state in memory, look-ups in it, and how an operation ends in a cause that
// is told once the lock is free. Only store/ includes this. The caller holds storeLock throughout.
//
// Invariants between any two operations while the store is open:
//   (1) slots[i] is the head of the record at main.offsets[i], as it lies in the file, but for a corrected one's kind
//   and
//       parent; main.itemCount is their number.
//   (2) main is what the file's first 8032 bytes hold, unless opening found damage and nothing was changed since.
//   (3) In an undamaged file no two records overlap, and all lie between 8032 and main.endOffset. What else lies there
//       (gaps, until the end of the run) are deleted records, one behind the other, without their signature.
#pragma once

#include <functional>
#include <new>
#include <string_view>
#include <vector>

#include "platform/lock.h"
#include "store/file/library_file.h"
#include "store/file/records.h"

namespace numalink {

struct Slot {
    ItemHeader head{};
    bool sound = true;       // a record with damage keeps its slot, and no operation sees it
    bool corrected = false;  // a folder whose kind or parent in the file would empty it with the temporary folder
};

struct StoreState {
    bool open = false;
    bool damaged = false;  // then no record is moved, and new ones go behind the end of the file
    bool copied = false;   // the damaged file has been copied, so it may be changed
    MainHeader main{};
    std::vector<Slot> slots;
    std::uint64_t arrivals = 0;  // changes of what there is and where it lies, counted since the program began
};
extern StoreState storeState GUARDED_BY(storeLock);

// Why an operation was refused.
enum class Fault {
    none,
    absent,  // no such item, or the store is closed: not told, the caller asked for nothing
    full,
    noFolder,
    intoItself,
    tooLarge,
    notWritten,
    headNotWritten,
    broken,
    replaced,
    itemUnread,
    notCopied,
    noMemory,
    wrongSize
};

// True for none; else tells the cause and gives false. Called with the lock free.
bool tellStoreFault(Fault fault);

// Runs an operation with the lock held for its whole length. Memory that doesn't suffice is a fault like any other.
template <typename Operation>
Fault withStoreLocked(Operation operation) {
    const HoldLock hold(storeLock);
    try {
        return operation();
    } catch (const std::bad_alloc &) {
        return Fault::noMemory;
    }
}

inline constexpr std::size_t noSlot = static_cast<std::size_t>(-1);

std::size_t slotOfId(ItemId id) REQUIRES_LOCK(storeLock);
MainHeader emptyMain();
// Reads the head record, and of each slot the head of its record; the text that tells what is wrong, or none.
Text readMain(MainHeader &main) REQUIRES_LOCK(storeLock);
// Whether a newer version may have written what readMain gave this text for. Above its limit the number is damage.
bool mayBeNewer(Text trouble, const MainHeader &main);
void readSlots(const MainHeader &main, std::vector<Slot> &slots) REQUIRES_LOCK(storeLock);
// Whether the head is one of a deleted record: it has lost its signature and kept its sizes.
bool isDeleted(const ItemHeader &head);
// Stretches that neither a record of the table nor deleted ones explain: a record that the table has lost, or the rest
// of one whose size says too little. In a file without damage there are none.
struct Stretch;
std::vector<Stretch> strayStretches(const MainHeader &main, const std::vector<Slot> &slots) REQUIRES_LOCK(storeLock);
bool isFolderId(ItemId id) REQUIRES_LOCK(storeLock);  // the root is one
// Whether it is that folder or lies below it. A circle of parents ends after as many steps as there are items.
bool liesWithin(ItemId id, ItemId folder) REQUIRES_LOCK(storeLock);
ItemEntry entryOf(const ItemHeader &head);

// The sound record of the lowest id that fits, or noSlot.
template <typename Fits>
std::size_t lowestSlot(Fits fits) REQUIRES_LOCK(storeLock) {
    std::size_t found = noSlot;
    for (std::size_t slot = 0; slot < storeState.slots.size(); slot++) {
        const Slot &candidate = storeState.slots[slot];
        if (!candidate.sound || !fits(candidate.head)) continue;
        if (found == noSlot || candidate.head.id < storeState.slots[found].head.id) found = slot;
    }
    return found;
}

// As a name lies in the file: ended at a zero byte, at most 52 codes.
std::string_view storedName(std::string_view name);

// Whether the record is seen under this name by people: the temporary folder never is.
bool isNamed(const ItemHeader &head, std::string_view name, ItemId parent);
// The name itself or the next one that neither a record under parent has nor alsoTaken refuses.
std::string freeName(std::string_view name, ItemId parent, ItemKind itemKind,
                     const std::function<bool(std::string_view)> &alsoTaken = {}) REQUIRES_LOCK(storeLock);

Fault addItem(const NewItem &item, ItemId &id, std::string *renamed = nullptr) REQUIRES_LOCK(storeLock);
// Folders one within the other, the first of them under parent; id is the last one's.
Fault addFolders(ItemId parent, const std::vector<std::string_view> &names, ItemId &id) REQUIRES_LOCK(storeLock);
// Empties the temporary folder but for those, and makes it anew when nothing of them lies in it.
Fault resetTemp(const std::vector<ItemId> &kept = {}) REQUIRES_LOCK(storeLock);
bool tempIsFresh() REQUIRES_LOCK(storeLock);  // one temporary folder at the top, and nothing in it
Fault readItem(ItemId id, StoredItem &item) REQUIRES_LOCK(storeLock);
// Marks the item and all that it holds at any depth. A circle of parents ends where everything is marked.
void markWithContents(std::vector<bool> &marks, std::size_t first) REQUIRES_LOCK(storeLock);
// A program carries its name in its first payload as well, and both are to be the same.
void renameProgram(Bytes &head, std::string_view name);
Fault putBack(const std::vector<StoredItem> &items, const std::vector<ItemId> &leaving) REQUIRES_LOCK(storeLock);

}  // namespace numalink
