// Any bytes as storage.dat, some of them as its journal: opened, walked, changed in a few ways that the bytes choose,
// and opened anew. What was sound when it opened must still be there, and a file that the store has made sound must
// open as sound.
#include <functional>
#include <map>

#include "platform/program_folder.h"
#include "require.h"
#include "store/file/journal.h"
#include "store/item_store.h"
#include "support/simulated_disk.h"

namespace {

using namespace numalink;

NewItem someItem(std::uint8_t choice, ItemId parent) {
    constexpr ItemKind kinds[] = {kind::program, kind::matrix, kind::folder, kind::list};
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
    std::vector<ItemEntry> items = storeListItems();
    std::erase_if(items, [](const ItemEntry &entry) { return entry.kind == kind::temporaryFolder; });
    const ItemId id = items.empty() ? choice : items[choice % items.size()].id;
    // The folder itself is nothing that a user can reach.
    if (const auto entry = storeReadEntry(id); entry && entry->kind == kind::temporaryFolder) return;
    const ItemId other = items.empty() ? rootId : items[operation % items.size()].id;
    const std::function<void()> operations[] = {
        [&] { storeAddItem(someItem(choice, other)); },
        [&] { storeAddItem(someItem(choice, rootId)); },
        [&] { storeWriteItem(id, someItem(choice, other)); },
        [&] { storeDelete(id); },
        [&] { storeMove(id, other); },
        [&] { storeRename(id, std::string(choice, 'r')); },
        [] { storeResetTemp(); },
        [&] { storeResolvePath("/" + std::string(1, static_cast<char>(choice)) + "/temp/", true); },
        [&] { storeStandardFolder(1000 + choice % 14U); }};
    operations[operation % 9]();
}

// What was read of the library: what an end and a start leave, and how many items there are with the temporary ones.
struct Content {
    std::map<ItemId, Bytes> kept;
    std::size_t count = 0;
};

bool waitsInTemp(const ItemEntry &entry) {
    ItemId at = entry.id;
    for (std::uint32_t steps = 0; steps <= storeSlotCount; steps++) {
        const auto holder = storeReadEntry(at);
        if (!holder) return false;
        if (holder->kind == kind::temporaryFolder) return true;
        at = holder->parent;
    }
    return false;
}

Content readAll() {
    Content content;
    for (const ItemEntry &entry : storeListItems()) {
        StoredItem item;
        require(storeReadItem(entry.id, item) && item.head.size() == entry.headSize &&
                item.data.size() == entry.dataSize);
        require(item.name == entry.name && item.name.size() <= storeNameLimit);
        require(storeReadEntry(entry.id).has_value() && storeFindSlot(entry.id) >= 0 && entry.id < storeNextId());
        content.count++;
        if (waitsInTemp(entry)) continue;
        Bytes &bytes = content.kept[entry.id];
        bytes = std::move(item.head);
        bytes.insert(bytes.end(), item.data.begin(), item.data.end());
        bytes.insert(bytes.end(), item.name.begin(), item.name.end());
        for (const std::uint32_t number : {item.parent, static_cast<std::uint32_t>(item.kind), item.flags}) {
            bytes.resize(bytes.size() + 4);
            writeLittle32(bytes, bytes.size() - 4, number);
        }
    }
    return content;
}

// The file that the bytes stand for. Ahead of the records stand the four numbers of the head and the offsets of the
// slots, without the rest of the 8,032 bytes; with a count of 255 the bytes are the file.
Bytes fileOf(const std::uint8_t *data, std::size_t size) {
    const std::size_t count = size > 0 ? data[0] : 255;
    const std::size_t numbers = 1 + 16 + 4 * count;
    if (count == 255 || size < numbers) return {data + std::min<std::size_t>(1, size), data + size};
    MainHeader main{};
    std::memcpy(main.signature, mainSignature, sizeof mainSignature);
    std::memcpy(&main.formatNumber, data + 1, 12);
    std::memcpy(&main.nextId, data + 13, 4);
    std::memcpy(main.offsets, data + 17, 4 * count);
    Bytes file(sizeof main);
    std::memcpy(file.data(), &main, sizeof main);
    file.insert(file.end(), data + numbers, data + size);
    return file;
}

// Some of the inputs have a journal beside the file: one whose sums are right, and whose other numbers are the input's.
// It covers one stretch, and belongs to the file unless the input says otherwise.
Bytes journalOf(const Bytes &file, const std::uint8_t *choices) {
    if (choices[0] < 192) return {};
    const std::size_t offset = file.empty() ? 0 : (choices[1] * 256U + choices[2]) % file.size();
    const std::size_t count = std::min<std::size_t>(choices[3], file.size() - offset);
    const Region region{offset, Bytes(count, choices[4]), Bytes(count + choices[5] % 4, choices[5])};
    const std::size_t mainSize = std::min(file.size(), sizeof(MainHeader));
    Bytes journal = encodeJournal({region}, file.size() + choices[6] % 3, ByteView(file).first(mainSize));
    if (choices[0] >= 240) journal[choices[7] * 2U % journal.size()] ^= choices[6];
    return journal;
}

}  // namespace

// The last 8 bytes choose the operations, the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static constexpr std::size_t choices = 8;
    if (size < choices) return 0;
    setLibraryFolder("/library/");
    const SimulatedFiles disk(Steps::forgotten);
    Bytes &file = diskFile("/library/storage.dat");
    const Bytes before = fileOf(data, size - choices);
    file = before;
    const Bytes journal = journalOf(before, data + size - choices);
    if (!journal.empty()) diskFile("/library/storage.dat-journal") = journal;
    const bool opened = storeOpen();
    const bool damaged = storeIsDamaged();
    require((opened && !damaged) || file == before || !journal.empty());
    if (!opened) return 0;
    readAll();
    for (const std::uint8_t *choice = data + size - choices; choice < data + size; choice += 2)
        change(choice[0], choice[1]);
    const Content content = readAll();
    storeClose();
    require(storeOpen());
    require(damaged || !storeIsDamaged());
    // An opening that is sound empties the temp folder; one that isn't may find more, such as the second of two records
    // of one id when the first has gone.
    const Content again = readAll();
    require(damaged ? again.count >= content.count || !storeIsDamaged() : again.kept == content.kept);
    storeClose();
    return 0;
}
