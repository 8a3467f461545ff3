// Taking back what was deleted or replaced, and the daily copies.
#include <gtest/gtest.h>

#include <filesystem>

#include "calculator/program_info.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "store/daily_copies.h"
#include "store/store_undo.h"
#include "store_support.h"

namespace numalink {

namespace {

using Undo = OpenStore;

// All but the temporary folder, by id.
std::vector<StoredItem> seen() {
    std::vector<StoredItem> items = Store::allItems();
    std::erase_if(items, [](const StoredItem &item) { return item.kind == kind::temporaryFolder; });
    return items;
}

bool undo() {
    ItemId shown = noItem;
    return storeUndo(shown);
}

bool redo() {
    ItemId shown = noItem;
    return storeRedo(shown);
}

TEST_F(Undo, AFolderComesBackWithAllItHeldAndLeavesAgain) {
    add("first", kind::list, rootId, {1}, {2});
    const ItemId outer = storeResolvePath("/A", true);
    const ItemId inner = storeResolvePath("/A/B", true);
    add("deep", kind::matrix, inner, {3, 4}, Bytes(300, 5));
    const ItemId late = storeResolvePath("/Late", true);  // a folder that is younger than what it comes to hold
    ASSERT_TRUE(storeMove(outer, late));
    storeSetFlags(late, 0);
    const auto before = seen();
    ASSERT_TRUE(storeDelete(late));
    const auto after = seen();
    ASSERT_EQ(storeUndoOffer()->name, "Late");
    EXPECT_EQ(storeUndoOffer()->count, 4U);
    EXPECT_FALSE(storeUndoOffer()->replacement);
    ASSERT_TRUE(undo());
    EXPECT_EQ(seen(), before);
    EXPECT_FALSE(undo());
    ASSERT_TRUE(redo());
    EXPECT_EQ(seen(), after);
    ASSERT_TRUE(undo());
    add("new", kind::list, inner);
    EXPECT_FALSE(redo()) << "what was put in meanwhile would lose its folder";
    EXPECT_TRUE(uiRecord.lines.empty());
}

TEST_F(Undo, AReplacedItemComesBackAndAnEditedOneStaysBesideIt) {
    add("A", kind::list, rootId, {1}, {1});
    const auto before = seen();
    add("A", kind::list, rootId, {2}, {2});
    EXPECT_TRUE(storeUndoOffer()->replacement);
    ASSERT_TRUE(undo());
    EXPECT_EQ(seen(), before);
    ASSERT_TRUE(redo());
    const ItemId second = storeFindItem("A", rootId);
    EXPECT_EQ(read(second).data, Bytes{2});
    ASSERT_TRUE(storeWriteItem(second, item("A", kind::list, rootId, {2}, {3})));
    ASSERT_TRUE(undo());
    EXPECT_EQ(read(second).data, Bytes{3});
    EXPECT_EQ(read(storeFindItem("A 2", rootId)).data, Bytes{1});
}

TEST_F(Undo, AProgramWhoseNameIsTakenByNowComesBackUnderAnotherInItsHeadToo) {
    ProgramInfo info;
    info.name = "RACE";
    const ItemId folder = storeResolvePath("/A", true);
    add("RACE", kind::program, folder, encodeProgramInfo(info), {1});
    ASSERT_TRUE(storeDelete(storeFindItem("RACE", folder)));
    add("RACE", kind::program, folder, encodeProgramInfo(info), {2});
    ASSERT_TRUE(undo());
    const StoredItem back = read(storeFindItem("RACE 2", folder));
    EXPECT_EQ(back.data, Bytes{1});
    EXPECT_EQ(decodeProgramInfo(back.head)->name, "RACE 2");
}

TEST_F(Undo, AGroupIsOneStepAndTheTemporaryFolderNone) {
    for (const char *name : {"A", "B"}) add(name, kind::list, rootId, {1}, {1});
    const auto before = seen();
    {
        const UndoGroup group;
        for (const std::uint8_t value : {std::uint8_t{2}, std::uint8_t{3}})
            for (const char *name : {"A", "B"}) add(name, kind::list, rootId, {1}, {value});
    }
    NewItem parked = item("X", kind::list, storeTempFolder());
    parked.whenTaken = NameTaken::keepBoth;
    ASSERT_TRUE(storeDelete(storeAddItem(parked)));
    ASSERT_TRUE(undo());
    EXPECT_EQ(seen(), before);
    EXPECT_FALSE(storeUndoOffer());
}

TEST_F(Undo, AFailedWriteKeepsTheStep) {
    const ItemId id = add("A", kind::list, rootId, {1}, {1});
    const auto before = seen();
    ASSERT_TRUE(storeDelete(id));
    simulatedDisk.failingFrom = simulatedDisk.operations + 1;
    simulatedDisk.failingCount = 1;
    EXPECT_FALSE(undo());
    EXPECT_FALSE(uiRecord.lines.empty());
    simulatedDisk.failingFrom = 0;
    ASSERT_TRUE(undo());
    EXPECT_EQ(seen(), before);
}

std::string dateOfTest;

TEST(DailyCopies, OneADayOfTheLastTenDaysWithChanges) {
    const ScratchFolder scratch;
    const std::string folder = scratch.path;
    clockPort.localDate = [] { return dateOfTest; };
    for (int day = 10; day < 24; day++) {
        dateOfTest = "2026-05-" + std::to_string(day);
        for (int start = 0; start < (day == 15 ? 1 : 2); start++) {
            ASSERT_TRUE(storeOpen());
            EXPECT_TRUE(keepDailyCopy());
            if (day % 7 != 0) storeResolvePath("/Day " + dateOfTest, true);
            storeClose();
        }
    }
    const std::filesystem::directory_iterator copies(folder + "backups");
    EXPECT_EQ(static_cast<std::size_t>(std::distance(begin(copies), end(copies))), dailyCopyLimit);
    EXPECT_FALSE(fileExists(folder + "backups/storage-2026-05-15.dat")) << "nothing had changed on the day before";
    EXPECT_TRUE(fileExists(folder + "backups/storage-2026-05-14.dat"));
    EXPECT_TRUE(fileExists(folder + "backups/storage-2026-05-23.dat"));
    EXPECT_FALSE(fileExists(folder + "backups/storage-2026-05-12.dat"));
    std::filesystem::copy_file(folder + "backups/storage-2026-05-14.dat", folder + "storage.dat",
                               std::filesystem::copy_options::overwrite_existing);
    ASSERT_TRUE(storeOpen());
    EXPECT_TRUE(storeItemExists("Day 2026-05-13", rootId));
    EXPECT_FALSE(storeItemExists("Day 2026-05-15", rootId));
    storeClose();
    clockPort = systemClock;
}

}  // namespace

}  // namespace numalink
