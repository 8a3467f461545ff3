// Opening a library that is damaged: what is told, what stays usable, and that nothing unread is written over.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "store/store_support.h"

namespace numalink {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
        storeClose();
        sound = file();
    }

    static constexpr std::size_t folder = 8032 + 92, first = folder + 92, second = first + 102, last = second + 102;

    // Opens the sound library with one number altered; gives the lines shown.
    std::vector<std::string> openWith(std::size_t offset, std::uint32_t number) {
        Bytes bytes = sound;
        writeLittle32(bytes, offset, number);
        opened = restart(bytes);
        return uiRecord.lines;
    }

    std::vector<ItemId> ids() const {
        std::vector<ItemId> found;
        for (const ItemEntry &entry : storeListItems()) found.push_back(entry.id);
        return found;
    }

    Bytes sound;
    bool opened = false;
};

TEST_F(DamagedStore, AHeadThatCantBeUsedIsRefusedAndNotTouched) {
    const std::pair<Bytes, const char *> cases[] = {{Bytes(sound.begin(), sound.begin() + 8031), "box 34 / 2"},
                                                    {Bytes(1), "box 34 / 2"},
                                                    {Bytes(9000), "box 35 / 2"}};
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
    EXPECT_THAT(openWith(16, 999), IsEmpty());
    EXPECT_TRUE(opened);
    EXPECT_EQ(readLittle32(file(), 16), 999U);
}

TEST_F(DamagedStore, EachSortOfDamageIsCountedAndTheSoundRecordsStay) {
    struct Case {
        const char *what;
        std::size_t offset;
        std::uint32_t number;
        std::vector<ItemId> sound;
    };
    const Case cases[] = {
        {"signature", first, 0, {2, 3, 5, 6}},
        {"offset outside the file", 28 + 4 * 2, 0xFFFFFFFF, {2, 3, 5, 6}},
        {"offset in the head record", 28 + 4 * 2, 100, {2, 3, 5, 6}},
        {"two slots for one record", 28 + 4 * 2, second, {2, 3, 5, 6}},
        {"size that wraps", first + 68, 0xFFFFFFFF - 80, {2, 3, 5, 6}},
        {"size past the end of the file", last + 72, 1, {2, 3, 4, 5}},
        {"reaches into the next record", first + 72, 7, {2, 3, 5, 6}},
        {"id of the root", first + 84, 1, {2, 3, 5, 6}},
        {"id that another has", second + 84, 4, {2, 3, 4, 6}},
        {"next id too low", 8028, 6, {2, 3, 4, 5, 6}},
        {"end too low", 24, 8032, {2, 3, 4, 5, 6}},
        {"end outside the file", 24, 100000, {2, 3, 4, 5, 6}},
        {"more items than slots", 20, 2001, {2, 3, 4, 5, 6}},
        {"offset outside the file, of the last", 28 + 4 * 4, 0xFFFFFFFF, {2, 3, 4, 5}},
        {"fewer items than there are", 20, 4, {2, 3, 4, 5}},
    };
    for (const Case &damage : cases) {
        SCOPED_TRACE(damage.what);
        EXPECT_THAT(openWith(damage.offset, damage.number),
                    ElementsAre("box 36 / 2 1 " + std::to_string(damage.offset == 20 ? 0 : 5 - damage.sound.size())));
        EXPECT_TRUE(opened && storeIsDamaged());
        EXPECT_EQ(ids(), damage.sound) << "and no temp folder was made";
        const Bytes before = file();
        storeClose();
        EXPECT_EQ(file(), before) << "nothing is written unless something changes";
        EXPECT_EQ(memoryDisk.files.size(), 1U);
    }
    EXPECT_THAT(openWith(folder + 88, 6), ElementsAre("box 36 / 2 2 0")) << "a circle of two folders";
    EXPECT_EQ(ids(), (std::vector<ItemId>{2, 3, 4, 5, 6}));
    Bytes endless = sound;
    std::fill_n(endless.begin() + first + 15, 53, std::uint8_t{'n'});
    EXPECT_TRUE(restart(endless));
    EXPECT_EQ(ids(), (std::vector<ItemId>{2, 3, 5, 6}));
}

TEST_F(DamagedStore, ACopyComesBeforeTheFirstChangeAndUnreadBytesStay) {
    openWith(first + 68, 0x7FFFFFFF);
    Bytes damaged = file();
    const ItemId added = add("N", kind::program, 3, {1}, {2});
    EXPECT_EQ(memoryDisk.files["/library/storage.dat.damaged-1"], damaged);
    ASSERT_TRUE(storeDelete(5));
    ASSERT_TRUE(storeWriteItem(added, item("N", kind::program, 3, {1}, {3})));
    ASSERT_TRUE(storeResetTemp());
    EXPECT_EQ(memoryDisk.files.size(), 3U) << "one copy a run, and the journal";
    std::fill_n(damaged.begin() + second, sizeof itemSignature, std::uint8_t{0});
    EXPECT_TRUE(std::equal(damaged.begin() + first, damaged.end(), file().begin() + first)) << "no record was moved";
    storeClose();
    EXPECT_TRUE(storeOpen());
    EXPECT_EQ(uiRecord.lines.back(), "box 36 / 2 1 1");
    EXPECT_EQ(ids(), (std::vector<ItemId>{3, 6, added, added + 1}));
    EXPECT_EQ(read(added).data, Bytes{3});
    ASSERT_TRUE(storeRename(added, "M"));
    EXPECT_TRUE(memoryDisk.files.contains("/library/storage.dat.damaged-2"));
}

TEST_F(DamagedStore, WithoutACopyNothingChanges) {
    openWith(first, 0);
    const Bytes damaged = file();
    memoryDisk.failingFrom = memoryDisk.operations + 1;
    memoryDisk.failingCount = 1;
    EXPECT_FALSE(storeDelete(5));
    EXPECT_EQ(file(), damaged);
    EXPECT_EQ(uiRecord.lines.back(), "box 166 / 2");
    EXPECT_TRUE(storeDelete(5)) << "there is room again";
    EXPECT_EQ(memoryDisk.files["/library/storage.dat.damaged-1"], damaged);
}

TEST_F(DamagedStore, FoldersOfACircleCanBeTakenOutOfItOrDeleted) {
    openWith(folder + 88, 6);
    ASSERT_TRUE(storeMove(3, rootId));
    ASSERT_TRUE(restart(Bytes(file())));
    EXPECT_THAT(uiRecord.lines, IsEmpty()) << "sound again";
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

TEST_F(DamagedStore, ALibraryThatAnotherProgramHoldsIsRefused) {
    int other = -1;
    ASSERT_EQ(filePort.openLocked("/library/storage.dat", false, other), OpenResult::opened);
    EXPECT_FALSE(storeOpen());
    EXPECT_THAT(uiRecord.lines, ElementsAre("box 33 / 2 /library/storage.dat"));
    EXPECT_EQ(file(), sound);
    filePort.close(other);
}

}  // namespace
}  // namespace numalink
