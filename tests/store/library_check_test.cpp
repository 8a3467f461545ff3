// Checking and repairing a damaged file: what is found of the records, and that a repair leaves a sound library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "store/library_check.h"
#include "store/store_worker.h"

namespace numalink {
namespace {

// Folder F (2), "A" (3) and "B" (4) in it, folder G (5) in F; A and B have 10 bytes of payload each.
struct LibraryToCheck : Store {
    LibraryToCheck() {
        storeOpen();
        const ItemId parent = add("F", kind::folder);
        add("A", kind::program, parent, Bytes(4, 0xA1), Bytes(6, 0xA2));
        add("B", kind::list, parent, Bytes(4, 0xB1), Bytes(6, 0xB2));
        add("G", kind::folder, parent);
        items = libraryState();
        storeClose();
        sound = file();
    }

    // Checks and repairs these bytes; gives the ids of what the library then holds.
    std::vector<ItemId> idsAfterRepair(const Bytes &damaged) {
        memoryDisk.files.clear();
        file() = damaged;
        const LibraryCheck checked = checkLibrary(false);
        EXPECT_EQ(file(), damaged) << "a check alone writes nothing";
        check = checkLibrary(true);
        EXPECT_EQ(check.damage, checked.damage);
        EXPECT_TRUE(check.damage == 0 || memoryDisk.files["/library/storage.dat.damaged-1"] == damaged);
        EXPECT_EQ(checkLibrary(false).damage, 0U) << "in order now";
        uiRecord.lines.clear();
        EXPECT_TRUE(storeOpen());
        EXPECT_TRUE(uiRecord.lines.empty());
        std::vector<ItemId> ids;
        int flawed = 0;  // a payload has nothing by which a flipped byte could be told
        for (const StoredItem &item : allItems()) {
            if (item.kind == kind::temporaryFolder) continue;
            ids.push_back(item.id);
            const auto original = std::ranges::find(items, item.id, &ItemEntry::id);
            flawed += original != items.end() && item.data != original->data ? 1 : 0;
        }
        EXPECT_LE(flawed, 1);
        checkFile();
        storeClose();
        std::ranges::sort(ids);
        return ids;
    }

    Bytes with(std::size_t offset, std::uint32_t number) const {
        Bytes bytes = sound;
        writeLittle32(bytes, offset, number);
        return bytes;
    }

    static constexpr std::size_t folder = 8032, first = folder + 92, second = first + 102, last = second + 102;
    Bytes sound;
    LibraryState items;
    LibraryCheck check;
};

using Ids = std::vector<ItemId>;

TEST_F(LibraryToCheck, SoundRecordsAreSavedWhateverTheHeadSays) {
    const Ids all = {2, 3, 4, 5};
    EXPECT_EQ(idsAfterRepair(sound), all);
    EXPECT_FALSE(check.repaired);
    EXPECT_EQ(idsAfterRepair(with(20, 1)), all) << "a count too low";
    EXPECT_EQ(idsAfterRepair(with(20, 77777)), all) << "a count too high";
    EXPECT_EQ(idsAfterRepair(with(24, 8032)), all) << "an end too low";
    EXPECT_EQ(idsAfterRepair(with(28 + 4, 1)), all) << "a place that isn't one";
    EXPECT_EQ(idsAfterRepair(with(28 + 4, static_cast<std::uint32_t>(second))), all) << "a place named twice";
    EXPECT_EQ(idsAfterRepair(with(0, 0)), all) << "no signature";
    EXPECT_FALSE(check.headUsable);
    EXPECT_EQ(idsAfterRepair(Bytes(8031)), Ids{});
    EXPECT_EQ(idsAfterRepair(with(8028, 0xFFFFFFFF)), all) << "the ids used up";
    EXPECT_EQ(idsAfterRepair(with(folder + 88, 5)), all) << "a circle of folders";
}

TEST_F(LibraryToCheck, ARecordThatLiesTakesNoOtherWithIt) {
    EXPECT_EQ(idsAfterRepair(with(first, 0)), (Ids{2, 4, 5}));
    EXPECT_EQ(idsAfterRepair(with(first + 72, 7)), (Ids{2, 4, 5})) << "reaches over the next";
    EXPECT_EQ(idsAfterRepair(with(second + 84, 3)), (Ids{2, 3, 5, 6}))
        << "a doubled id: the second gets one of its own";
    Bytes both = with(first + 72, 7);
    writeLittle32(both, 0, 0);
    EXPECT_EQ(idsAfterRepair(both), (Ids{2, 4, 5})) << "without a table too";
    EXPECT_EQ(idsAfterRepair(Bytes(sound.begin(), sound.begin() + last + 50)), (Ids{2, 3, 4}));
}

TEST_F(LibraryToCheck, WhatWasDeletedStaysDeleted) {
    ASSERT_TRUE(restart(sound));
    ASSERT_TRUE(storeDelete(3));
    const Bytes longer = file();
    storeClose();
    EXPECT_EQ(idsAfterRepair(longer), (Ids{2, 4, 5})) << "though its bytes lie behind the end";
    ASSERT_TRUE(restart(with(folder + 88, 5)) && storeIsDamaged());
    ASSERT_TRUE(storeDelete(3));
    storeClose();
    EXPECT_EQ(idsAfterRepair(Bytes(file())), (Ids{2, 4, 5})) << "nor where records aren't moved";
}

TEST_F(LibraryToCheck, AnyByteMayBeFlippedAndAnyLengthCut) {
    Random random(3);
    for (int round = 0; round < 120; round++) {
        SCOPED_TRACE(round);
        Bytes damaged = sound;
        const std::size_t place = round % 2 ? random() % damaged.size() : 8000 + random() % (damaged.size() - 8000);
        if (round % 4 == 3)
            damaged.resize(place);
        else
            damaged[place] ^= static_cast<std::uint8_t>(1 + random() % 255);
        memoryDisk.files.clear();
        ASSERT_NO_FATAL_FAILURE(restart(damaged));
        const bool opened = storeIsOpen(), changes = storeIsDamaged() && storeRename(2, "new");
        storeClose();
        EXPECT_TRUE(!changes || memoryDisk.files["/library/storage.dat.damaged-1"] == damaged);
        EXPECT_TRUE(opened || file() == damaged);
        if (readLittle32(damaged.size() < 20 ? Bytes(20) : damaged, 16) > storeNewestFormat) continue;
        const Ids ids = idsAfterRepair(damaged);
        EXPECT_GE(ids.size(), round % 4 == 3 ? 0U : 3U) << "one byte costs one record at most";
    }
}

TEST_F(LibraryToCheck, OneThatIsHeldOrMissingIsLeftAlone) {
    ASSERT_TRUE(storeOpen());
    EXPECT_EQ(checkLibrary(true).outcome, CheckOutcome::held);
    EXPECT_TRUE(storeIsOpen());
    storeClose();
    int other = -1;
    ASSERT_EQ(filePort.openLocked("/library/storage.dat", false, other), OpenResult::opened);
    EXPECT_EQ(checkLibrary(true).outcome, CheckOutcome::held);
    filePort.close(other);
    memoryDisk.files.clear();
    EXPECT_EQ(checkLibrary(true).outcome, CheckOutcome::absent);
    EXPECT_TRUE(memoryDisk.files.empty());
}

}  // namespace
}  // namespace numalink
