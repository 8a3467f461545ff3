// Opening, checking and repairing a library that is damaged: what is told, what stays usable, that nothing unread is
// written over, and that a repair leaves a sound library.
#include <gmock/gmock.h>

#include "store/care/library_check.h"
#include "store/store_worker.h"

namespace numalink {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Ids = std::vector<ItemId>;

// Ids 2 (temp), 3 folder F, 4 "A" in F, 5 "B" in F, 6 folder G in F; each record but the folders' has 10 bytes of
// payload.
struct DamagedStore : Store {
    DamagedStore() {
        storeOpen();
        storeResetTemp();
        const ItemId parent = add("F", kind::folder);
        add("A", kind::program, parent, Bytes(4, 0xA1), Bytes(6, 0xA2));
        add("B", kind::list, parent, Bytes(4, 0xB1), Bytes(6, 0xB2));
        add("G", kind::folder, parent);
        items = libraryState();
        storeClose();
        sound = file();
    }

    static constexpr std::size_t folder = 8032 + 92, first = folder + 92, second = first + 102, last = second + 102;

    Bytes with(std::size_t offset, std::uint32_t number) const {
        Bytes bytes = sound;
        writeLittle32(bytes, offset, number);
        return bytes;
    }

    // Opens the sound library with one number altered; gives the lines shown.
    std::vector<std::string> openWith(std::size_t offset, std::uint32_t number) {
        opened = restart(with(offset, number));
        return uiRecord.lines;
    }

    static Ids ids() {
        Ids found;
        for (const ItemEntry &entry : storeListItems()) found.push_back(entry.id);
        return found;
    }

    // Checks and repairs these bytes; gives the ids of what the library then holds beside the temporary folder.
    Ids idsAfterRepair(const Bytes &damaged) {
        diskLoad({});
        file() = damaged;
        const LibraryCheck checked = checkLibrary(false);
        EXPECT_EQ(file(), damaged) << "a check alone writes nothing";
        check = checkLibrary(true);
        EXPECT_EQ(check.damage, checked.damage);
        EXPECT_TRUE(check.damage == 0 || diskFile("/library/storage.dat.damaged-1") == damaged);
        EXPECT_EQ(checkLibrary(false).damage, 0U) << "in order now";
        uiRecord.lines.clear();
        EXPECT_TRUE(storeOpen());
        EXPECT_TRUE(uiRecord.lines.empty());
        Ids left;
        int flawed = 0;  // a payload has nothing by which a flipped byte could be told
        for (const StoredItem &item : allItems()) {
            if (item.kind == kind::temporaryFolder) continue;
            left.push_back(item.id);
            EXPECT_TRUE(check.damage == 0 || item.parent == rootId || storeReadEntry(item.parent))
                << "in no lost folder";
            const auto original = std::ranges::find(items, item.id, &ItemEntry::id);
            flawed += original != items.end() && item.data != original->data ? 1 : 0;
        }
        EXPECT_LE(flawed, 1);
        checkFile();
        storeClose();
        std::ranges::sort(left);
        return left;
    }

    LibraryState items;
    Bytes sound;
    LibraryCheck check;
    bool opened = false;
};

TEST_F(DamagedStore, AHeadThatCantBeUsedIsRefusedAndNotTouched) {
    const std::pair<Bytes, const char *> cases[] = {
        {Bytes(sound.begin(), sound.begin() + 8031), "box 34 / 2 /library/"},
        {Bytes(1), "box 34 / 2 /library/"},
        {Bytes(9000), "box 35 / 2 /library/"}};
    for (const auto &[bytes, line] : cases) {
        EXPECT_FALSE(restart(bytes));
        EXPECT_THAT(uiRecord.lines, ElementsAre(line));
        EXPECT_FALSE(storeIsOpen());
        EXPECT_EQ(add("X", kind::program), noItem);
        storeClose();
        EXPECT_EQ(file(), bytes);
    }
    EXPECT_THAT(openWith(16, 1001), ElementsAre("box 119 / 2"));
    EXPECT_FALSE(opened);
    EXPECT_THAT(openWith(16, 0x01000001), ElementsAre("box 119 / 2 /library/")) << "no version will ever write that";
    EXPECT_THAT(openWith(16, 999), IsEmpty());
    EXPECT_TRUE(opened);
    EXPECT_EQ(readLittle32(file(), 16), 999U);
}

TEST_F(DamagedStore, EachSortOfDamageIsCountedAndTheSoundRecordsStay) {
    const Ids all = {3, 4, 5, 6}, allAndTemp = {2, 3, 4, 5, 6}, withoutA = {2, 3, 5, 6}, savedButA = {3, 5, 6};
    const struct {
        const char *what;
        std::size_t offset;
        std::uint32_t number;
        Ids sound, repaired;
    } cases[] = {
        {"signature", first, 0, withoutA, savedButA},
        {"offset outside the file", 28 + 4 * 2, 0xFFFFFFFF, withoutA, all},
        {"offset in the head record", 28 + 4 * 2, 100, withoutA, all},
        {"two slots for one record", 28 + 4 * 2, second, withoutA, all},
        {"size that wraps", first + 68, 0xFFFFFFFF - 80, withoutA, savedButA},
        {"size past the end of the file", last + 72, 1, {2, 3, 4, 5}, {3, 4, 5}},
        {"reaches into the next record", first + 72, 7, withoutA, savedButA},
        {"id of the root", first + 84, 1, withoutA, savedButA},
        {"id that another has", second + 84, 4, {2, 3, 4, 6}, {3, 4, 6, 7}},
        {"id that leaves none", second + 84, 0xF0000005, {2, 3, 4, 6, 0xF0000005}, {3, 4, 6, 7}},
        {"next id too low", 8028, 6, allAndTemp, all},
        {"end too low", 24, 8032, allAndTemp, all},
        {"end outside the file", 24, 100000, allAndTemp, all},
        {"more items than slots", 20, 2001, allAndTemp, all},
        {"offset outside the file, of the last", 28 + 4 * 4, 0xFFFFFFFF, {2, 3, 4, 5}, all},
        {"fewer items than there are", 20, 4, {2, 3, 4, 5}, all},
        {"folder that came to stand in the temporary one", folder + 88, 2, allAndTemp, all},
    };
    for (const auto &damage : cases) {
        SCOPED_TRACE(damage.what);
        EXPECT_THAT(openWith(damage.offset, damage.number),
                    ElementsAre("box 36 / 2 1 " + std::to_string(damage.offset == 20 ? 0 : 5 - damage.sound.size())));
        EXPECT_TRUE(opened && storeIsDamaged());
        EXPECT_EQ(ids(), damage.sound) << "and no temp folder was made";
        const Bytes before = file();
        storeClose();
        EXPECT_EQ(file(), before) << "nothing is written unless something changes";
        EXPECT_EQ(simulatedDisk.now.names.size(), 1U);
        EXPECT_EQ(idsAfterRepair(before), damage.repaired);
        diskLoad({});
    }
    EXPECT_THAT(openWith(folder + 88, 6), ElementsAre("box 36 / 2 2 0")) << "a circle of two folders";
    EXPECT_EQ(ids(), allAndTemp);
    storeClose();
    EXPECT_EQ(idsAfterRepair(with(folder + 88, 6)), all);
    Bytes endless = sound;
    std::fill_n(endless.begin() + first + 15, 53, std::uint8_t{'n'});
    EXPECT_TRUE(restart(endless));
    EXPECT_EQ(ids(), withoutA);
    storeClose();
    EXPECT_EQ(idsAfterRepair(sound), all);
    EXPECT_FALSE(check.repaired);
    EXPECT_EQ(idsAfterRepair(with(0, 0)), allAndTemp) << "no head that is one, nor a folder that is emptied";
    EXPECT_FALSE(check.headUsable);
    Bytes both = with(first + 72, 7);
    writeLittle32(both, 0, 0);
    EXPECT_EQ(idsAfterRepair(both), (Ids{2, 3, 5, 6})) << "without a table too";
    Bytes doubled = with(second + 84, 4);
    writeLittle32(doubled, 0, 0);
    EXPECT_EQ(idsAfterRepair(doubled), (Ids{2, 3, 4, 6, 7})) << "two items of one id are both kept";
    EXPECT_EQ(idsAfterRepair(with(16, 1001)), all) << "nothing is amiss but the number of the format";
    EXPECT_EQ(idsAfterRepair(with(16, 0x01000001)), all);
    EXPECT_EQ(idsAfterRepair(with(8028, 0xFFFFFFFF)), all) << "the ids used up";
    EXPECT_EQ(idsAfterRepair(Bytes(8031)), Ids{});
    EXPECT_EQ(idsAfterRepair(Bytes(sound.begin(), sound.begin() + last + 50)), (Ids{3, 4, 5}));
}

TEST_F(DamagedStore, WhatIsSavedIsDoubledOnlyWhereItDiffersAndDoesntGoWithTheTemporaryFolder) {
    Bytes waiting = with(28 + 4 * 2, 0xFFFFFFFF);
    writeLittle32(waiting, first + 88, 2);
    EXPECT_EQ(idsAfterRepair(waiting), (Ids{3, 4, 5, 6}));
    ASSERT_TRUE(restart(sound));
    const ItemId large = add("L", kind::backup, rootId, {}, Bytes(70000, 1));
    storeClose();
    Bytes doubled = file();
    doubled.insert(doubled.end(), file().begin() + static_cast<std::ptrdiff_t>(sound.size()), file().end());
    writeLittle32(doubled, 0, 0);
    EXPECT_EQ(idsAfterRepair(doubled), (Ids{2, 3, 4, 5, 6, large}));
    doubled.back()++;
    EXPECT_EQ(idsAfterRepair(doubled), (Ids{2, 3, 4, 5, 6, large, large + 1}));
}

TEST_F(DamagedStore, IdsAreRefusedAheadOfTheirLimit) {
    ASSERT_TRUE(restart(with(8028, 0x7FFFFFFD)));
    EXPECT_EQ(add("X", kind::program), 0x7FFFFFFDU);
    EXPECT_EQ(add("Y", kind::program), noItem);
    ASSERT_TRUE(restart(Bytes(file())));
    EXPECT_THAT(uiRecord.lines, IsEmpty()) << "still in order";
    EXPECT_EQ(ids().size(), 6U);
}

TEST_F(DamagedStore, WhatANewerVersionWroteIsNotRepaired) {
    Bytes newer = with(16, 1001);
    newer[first] = 0;
    diskLoad({});
    file() = newer;
    EXPECT_EQ(checkLibrary(true).outcome, CheckOutcome::newer);
    EXPECT_EQ(file(), newer);
    EXPECT_EQ(simulatedDisk.now.names.size(), 1U);
}

// As by one who copies a backup over it.
TEST_F(DamagedStore, ALibraryThatAnotherWritesOverWhileItIsOpenIsLeftAlone) {
    Bytes longer = sound;
    longer.resize(longer.size() + 100, 7);  // behind the end of its records: an end would cut it off
    for (const Bytes &other : {longer, with(8028, 99), Bytes(sound.begin(), sound.begin() + last)}) {
        ASSERT_TRUE(restart(sound) && storeRename(4, "C"));
        file() = other;
        storeClose();
        EXPECT_EQ(file(), other) << "nor by a run that changes nothing more";
        ASSERT_TRUE(restart(sound) && storeRename(4, "C"));
        file() = other;
        EXPECT_FALSE(storeRename(4, "D") || storeDelete(3));
        EXPECT_EQ(uiRecord.lines, std::vector<std::string>(2, "box 166 / 2"));
        EXPECT_EQ(file(), other);
        storeClose();
        EXPECT_EQ(file(), other);
        EXPECT_TRUE(restart(sound) && storeRename(4, "E"));
    }
}

TEST_F(DamagedStore, ACopyComesBeforeTheFirstChangeAndUnreadBytesStay) {
    openWith(first + 68, 0x7FFFFFFF);
    Bytes damaged = file();
    const ItemId added = add("N", kind::program, 3, {1}, {2});
    EXPECT_EQ(diskFile("/library/storage.dat.damaged-1"), damaged);
    ASSERT_TRUE(storeDelete(5));
    ASSERT_TRUE(storeWriteItem(added, item("N", kind::program, 3, {1}, {3})));
    ASSERT_TRUE(storeResetTemp());
    EXPECT_EQ(simulatedDisk.now.names.size(), 3U) << "one copy a run, and the journal";
    std::fill_n(damaged.begin() + second, sizeof itemSignature, std::uint8_t{0});
    EXPECT_TRUE(std::equal(damaged.begin() + first, damaged.end(), file().begin() + first)) << "no record was moved";
    storeClose();
    EXPECT_TRUE(storeOpen());
    EXPECT_EQ(uiRecord.lines.back(), "box 36 / 2 1 1");
    EXPECT_EQ(ids(), (std::vector<ItemId>{3, 6, added, added + 1}));
    EXPECT_EQ(read(added).data, Bytes{3});
    ASSERT_TRUE(storeRename(added, "M"));
    EXPECT_TRUE(simulatedDisk.now.names.contains("/library/storage.dat.damaged-2"));
}

TEST_F(DamagedStore, WithoutACopyNothingChanges) {
    openWith(first, 0);
    const Bytes damaged = file();
    failDisk(1, 1);
    EXPECT_FALSE(storeDelete(5));
    EXPECT_EQ(file(), damaged);
    EXPECT_EQ(uiRecord.lines.back(), "box 166 / 2");
    EXPECT_TRUE(storeDelete(5)) << "there is room again";
    EXPECT_EQ(diskFile("/library/storage.dat.damaged-1"), damaged);
}

TEST_F(DamagedStore, FoldersOfACircleCanBeTakenOutOfItOrDeleted) {
    openWith(folder + 88, 6);
    ASSERT_TRUE(storeMove(3, rootId));
    ASSERT_TRUE(restart(Bytes(file())));
    EXPECT_THAT(uiRecord.lines, IsEmpty()) << "sound again";
    EXPECT_FALSE(storeMove(3, 2)) << "no folder waits in the temporary one";
    openWith(folder + 88, 6);
    ASSERT_TRUE(storeDelete(6));
    EXPECT_EQ(ids(), (std::vector<ItemId>{2}));
}

TEST_F(DamagedStore, PayloadsThatDontComeWholeAreTold) {
    restart(sound);
    file().resize(second);
    StoredItem untouched;
    EXPECT_FALSE(storeReadItem(5, untouched));
    EXPECT_EQ(untouched.id, noItem);
    EXPECT_THAT(uiRecord.lines, ElementsAre("box 166 / 2"));
}

TEST_F(DamagedStore, WhatWasDeletedStaysDeleted) {
    ASSERT_TRUE(restart(sound));
    ASSERT_TRUE(storeDelete(4));
    const Bytes longer = file();
    storeClose();
    EXPECT_EQ(idsAfterRepair(longer), (Ids{3, 5, 6})) << "though its bytes lie behind the end";
    openWith(folder + 88, 6);
    ASSERT_TRUE(storeDelete(4));
    storeClose();
    EXPECT_EQ(idsAfterRepair(Bytes(file())), (Ids{3, 5, 6})) << "nor where records aren't moved";
}

TEST_F(DamagedStore, AnyByteMayBeFlippedAndAnyLengthCut) {
    Random random(3);
    for (int round = 0; round < 120; round++) {
        Bytes damaged = sound;
        const std::size_t place = round % 2 ? random() % damaged.size() : 8000 + random() % (damaged.size() - 8000);
        SCOPED_TRACE(std::to_string(round) + ", at " + std::to_string(place));
        if (round % 4 == 3)
            damaged.resize(place);
        else
            damaged[place] ^= static_cast<std::uint8_t>(1 + random() % 255);
        diskLoad({});
        ASSERT_NO_FATAL_FAILURE(restart(damaged));
        const bool isOpen = storeIsOpen(), changes = storeIsDamaged() && storeRename(3, "new");
        storeClose();
        EXPECT_TRUE(!changes || diskFile("/library/storage.dat.damaged-1") == damaged);
        EXPECT_TRUE(isOpen || file() == damaged);
        const Ids left = idsAfterRepair(damaged);
        EXPECT_GE(left.size(), round % 4 == 3 ? 0U : 3U) << "one byte costs one record at most";
    }
}

TEST_F(DamagedStore, WhatIsWholeBehindMissingOrInsertedBytesIsSaved) {
    ASSERT_TRUE(restart(sound));
    Random random(5);
    for (const char *name : {"C", "D", "E"}) {
        Bytes data(20 + random() % 300);
        for (std::uint8_t &byte : data) byte = static_cast<std::uint8_t>(1 + random() % 255);
        add(name, kind::list, rootId, Bytes(50, 1), data);
    }
    items = libraryState();
    storeClose();
    const Bytes whole = file();
    int saved = 0;
    for (int round = 0; round < 120; round++) {
        Bytes damaged = whole;
        const std::size_t place = sizeof(MainHeader) + random() % (whole.size() - sizeof(MainHeader));
        const std::size_t count = 1 + random() % 150;
        const auto at = damaged.begin() + static_cast<std::ptrdiff_t>(place);
        if (round % 2 == 0)
            damaged.insert(at, count, std::uint8_t{0x55});
        else
            damaged.erase(at, at + static_cast<std::ptrdiff_t>(std::min(count, whole.size() - place)));
        SCOPED_TRACE(std::to_string(round) + ": " + std::to_string(count) + " bytes at " + std::to_string(place));
        const Ids left = idsAfterRepair(damaged);
        const auto lost = std::ranges::count(check.records, RecordFate::lost, &CheckedRecord::fate);
        EXPECT_LE(lost + std::ssize(left), std::ssize(items)) << "lost and found at once";
        for (std::size_t from = sizeof(MainHeader), end = 0; from < whole.size(); from = end) {
            ItemHeader head{};
            std::memcpy(&head, whole.data() + from, sizeof head);
            end = from + recordSize(head);
            const auto record = std::span(whole).subspan(from, end - from);
            const auto found = std::search(damaged.begin(), damaged.end(), record.begin(), record.end());
            if (head.kind == kind::temporaryFolder || found == damaged.end()) continue;
            EXPECT_TRUE(std::ranges::count(left, head.id) == 1) << "id " << head.id;
            saved++;
        }
    }
    EXPECT_GT(saved, 500);
}

// A run that was killed leaves gaps; then a bit flips. Either that is told, and nothing is lost that it didn't hit, or
// it is no more than a field of the record that it hit.
TEST_F(DamagedStore, EachBitOfAHeadIsToldOrHarmsItsOwnRecordAlone) {
    ASSERT_TRUE(restart(sound));
    const ItemId gone = add("C", kind::program, rootId, {1}, Bytes(300, 3));
    add("D", kind::program, 3, Bytes(40, 4), Bytes(568, 5));
    add("E", kind::list, rootId, Bytes(70, 6), Bytes(200, 7));
    add("T", kind::folder);
    ASSERT_TRUE(storeDelete(gone) && storeDelete(5));
    const Bytes killed = file();
    LibraryState all = libraryState();
    std::erase_if(all, [](const StoredItem &item) { return item.kind == kind::temporaryFolder; });
    std::vector<std::pair<std::size_t, ItemId>> fields{{0, noItem},
                                                       {8028, noItem}};  // of 4 bytes, with their item's id
    for (std::size_t at = 4; at < 28 + 4 * 9; at += 4) fields.emplace_back(at, noItem);
    for (std::size_t at = sizeof(MainHeader), end = 0; at < killed.size(); at = end) {
        ItemHeader head{};
        std::memcpy(&head, killed.data() + at, sizeof head);
        end = at + recordSize(head);
        for (std::size_t field = 0; field < sizeof head; field += 4) fields.emplace_back(at + field, head.id);
    }
    std::size_t told = 0;
    for (const auto &[place, id] : fields) {
        for (std::uint32_t bit = 0; bit < 32; bit++) {
            Bytes damaged = killed;
            writeLittle32(damaged, place, readLittle32(damaged, place) ^ (1U << bit));
            SCOPED_TRACE("at " + std::to_string(place) + ", bit " + std::to_string(bit));
            diskLoad({});
            if (!restart(damaged)) {
                ASSERT_EQ(file(), damaged);
                continue;
            }
            const bool isTold = storeIsDamaged();
            told += isTold ? 1 : 0;
            // Nothing tells an item that came to stand in the temporary folder from one that waits there.
            const auto hit = storeReadEntry(id);
            const bool parked = !hit || hit->parent == 2;
            ASSERT_NE(add("new", kind::list, rootId, {}, Bytes(2000, 9)), noItem);
            storeClose();
            if (isTold) {
                ASSERT_EQ(diskFile("/library/storage.dat.damaged-1"), damaged);
                ASSERT_TRUE(std::equal(damaged.begin() + sizeof(MainHeader), damaged.end(),
                                       file().begin() + sizeof(MainHeader)));
            }
            ASSERT_TRUE(storeOpen());
            int missing = 0;
            for (const StoredItem &item : all) {
                StoredItem found;
                bool there = storeReadEntry(item.id).has_value();
                ASSERT_TRUE(!there || storeReadItem(item.id, found));
                if (isTold && found.kind != item.kind) found = {}, there = false;  // one that took its id
                if (item.id == id && (isTold || parked)) continue;
                missing += there ? 0 : 1;
                ASSERT_EQ(found.head.size() + found.data.size(), there ? item.head.size() + item.data.size() : 0);
                StoredItem atTop = item;  // a folder that would go with the temporary one
                if (isTold && isFolderKind(item.kind)) atTop.parent = rootId;
                ASSERT_TRUE(!there || item.id == id || found == item || found == atTop) << item.id;
            }
            ASSERT_LE(missing, place == 20 ? 8 : isTold ? 1 : 0) << "a count that lies hides those behind it";
            storeClose();
        }
    }
    EXPECT_GT(told, fields.size() * 8) << "most bits of the heads matter";
}

// Bytes of the file that the disk doesn't give any more.
constexpr std::uint64_t badFrom = 8032 + 92 + 92 + 95;  // in the first payload of "A"
std::size_t (*readWell)(int, std::uint64_t, void *, std::size_t) = nullptr;
std::size_t readButBad(int file, std::uint64_t offset, void *bytes, std::size_t count) {
    const std::size_t read = readWell(file, offset, bytes, count);
    return offset <= badFrom && badFrom < offset + count ? 0 : read;
}

TEST_F(DamagedStore, ASectorThatCantBeReadCostsItsRecordAlone) {
    file() = sound;
    readWell = std::exchange(filePort.readAt, readButBad);
    const LibraryCheck seen = checkLibrary(true);
    EXPECT_EQ(seen.damage, 1U);
    EXPECT_TRUE(seen.repaired);
    filePort.readAt = readWell;
    const Bytes copy = diskFile("/library/storage.dat.damaged-1");
    ASSERT_EQ(copy.size(), sound.size());
    EXPECT_TRUE(std::equal(sound.begin(), sound.begin() + 8192, copy.begin())) << "up to the sector";
    EXPECT_EQ(copy[badFrom], 0);
    ASSERT_TRUE(storeOpen());
    EXPECT_EQ(ids(), (Ids{2, 3, 5, 6}));
}

TEST_F(DamagedStore, ALibraryThatIsHeldOrMissingIsLeftAlone) {
    ASSERT_TRUE(storeOpen());
    EXPECT_EQ(checkLibrary(true).outcome, CheckOutcome::held);
    EXPECT_TRUE(storeIsOpen());
    storeClose();
    const Bytes before = file();
    int other = -1;
    ASSERT_EQ(filePort.openLocked("/library/storage.dat", false, other), OpenResult::opened);
    EXPECT_FALSE(storeOpen());
    EXPECT_THAT(uiRecord.lines, ElementsAre("box 33 / 2 /library/storage.dat"));
    EXPECT_EQ(checkLibrary(true).outcome, CheckOutcome::held);
    EXPECT_EQ(file(), before);
    filePort.close(other);
    diskLoad({});
    EXPECT_EQ(checkLibrary(true).outcome, CheckOutcome::absent);
    EXPECT_TRUE(simulatedDisk.now.names.empty());
}

}  // namespace
}  // namespace numalink
