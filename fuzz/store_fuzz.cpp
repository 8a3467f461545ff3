// Any bytes as storage.dat: opened, walked, changed in a few ways that the bytes choose, and opened anew. What was
// sound when it opened must still be there, and a file that the store has made sound must open as sound.
#include <cstdlib>

#include "../tests/support/memory_file.h"
#include "platform/program_folder.h"
#include "store/item_store.h"

namespace {

using namespace numalink;

void require(bool holds) {
    if (!holds) std::abort();
}

NewItem someItem(std::uint8_t choice, ItemId parent) {
    constexpr ItemKind kinds[] = {kind::program, kind::matrix, kind::folder, kind::temporaryFolder};
    NewItem item;
    item.name = std::string(choice % 60, static_cast<char>(choice));
    item.parent = parent;
    item.kind = kinds[choice % 4];
    if (item.kind < kind::folder) item.data = Bytes(choice, choice);
    item.whenTaken = static_cast<NameTaken>(choice / 4 % 3);
    return item;
}

// One operation on the item that stands at the place chosen.
void change(std::uint8_t operation, std::uint8_t choice) {
    const std::vector<ItemEntry> items = storeListItems();
    const ItemId id = items.empty() ? choice : items[choice % items.size()].id;
    const ItemId other = items.empty() ? rootId : items[operation % items.size()].id;
    switch (operation % 9) {
        case 0:
            storeAddItem(someItem(choice, other));
            break;
        case 1:
            storeAddItem(someItem(choice, rootId));
            break;
        case 2:
            storeWriteItem(id, someItem(choice, other));
            break;
        case 3:
            storeDelete(id);
            break;
        case 4:
            storeMove(id, other);
            break;
        case 5:
            storeRename(id, std::string(choice, 'r'));
            break;
        case 6:
            storeResetTemp();
            break;
        case 7:
            storeResolvePath("/" + std::string(1, static_cast<char>(choice)) + "/temp/", true);
            break;
        default:
            storeStandardFolder(1000 + choice % 14U);
    }
}

// Which sound items there are, with the payloads that can be read.
std::size_t readAll() {
    const std::vector<ItemEntry> items = storeListItems();
    for (const ItemEntry &entry : items) {
        StoredItem item;
        require(storeReadItem(entry.id, item) && item.head.size() == entry.headSize &&
                item.data.size() == entry.dataSize);
        require(item.name == entry.name && item.name.size() <= storeNameLimit);
        require(storeReadEntry(entry.id).has_value() && storeFindSlot(entry.id) >= 0 && entry.id < storeNextId());
    }
    return items.size();
}

}  // namespace

// The last 8 bytes choose the operations, the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static constexpr std::size_t choices = 8;
    if (size < choices) return 0;
    setLibraryFolder("/library/");
    const MemoryFiles disk;
    const std::string path = "/library/storage.dat";
    memoryDisk.files[path].assign(data, data + size - choices);
    if (!storeOpen()) {
        require(memoryDisk.files[path] == Bytes(data, data + size - choices));
        return 0;
    }
    const bool damaged = storeIsDamaged();
    if (damaged) require(memoryDisk.files[path] == Bytes(data, data + size - choices));
    readAll();
    for (const std::uint8_t *choice = data + size - choices; choice < data + size; choice += 2)
        change(choice[0], choice[1]);
    const std::size_t count = readAll();
    storeClose();
    require(storeOpen());
    require(damaged || !storeIsDamaged());
    // The temp folder's contents go at an opening that is sound.
    require(readAll() == count || !storeIsDamaged());
    storeClose();
    return 0;
}
