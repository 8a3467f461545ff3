// Taking back what was deleted or replaced, and the daily copies.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <thread>

#include "calculator/program_info.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/program_folder.h"
#include "store/daily_copies.h"
#include "store/failing_memory.h"
#include "store/store_undo.h"
#include "store_support.h"

namespace numalink {

namespace {

using Undo = Store;

// All but the temporary folder, by id.
std::vector<StoredItem> seen() {
    std::vector<StoredItem> items = Store::allItems();
    std::erase_if(items, [](const StoredItem &item) { return item.kind == kind::temporaryFolder; });
    return items;
}

bool undo() {
    TakenBack done;
    return storeUndo(done);
}

bool redo() {
    TakenBack done;
    return storeRedo(done);
}

TEST_F(Undo, AFolderComesBackWithAllItHeldAndLeavesAgain) {
    ASSERT_TRUE(storeOpen());
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
    ASSERT_TRUE(storeOpen());
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
    ASSERT_TRUE(storeOpen());
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
    ASSERT_TRUE(storeOpen());
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
    ASSERT_TRUE(storeOpen());
    const ItemId id = add("A", kind::list, rootId, {1}, {1});
    const auto before = seen();
    ASSERT_TRUE(storeDelete(id));
    memoryDisk.failingFrom = memoryDisk.operations + 1;
    memoryDisk.failingCount = 1;
    EXPECT_FALSE(undo());
    EXPECT_FALSE(uiRecord.lines.empty());
    memoryDisk.failingFrom = 0;
    ASSERT_TRUE(undo());
    EXPECT_EQ(seen(), before);
}

TEST_F(Undo, WhatCameInsteadStaysOnceItIsRenamedMovedOrOfAnotherKind) {
    ASSERT_TRUE(storeOpen());
    static const ItemId folder = storeResolvePath("/F", true);
    bool (*const touches[])(ItemId) = {
        [](ItemId id) { return storeRename(id, "B"); }, [](ItemId id) { return storeMove(id, folder); },
        [](ItemId id) { return storeWriteItem(id, item("A", kind::matrix, rootId, {1}, {2})); }};
    for (const auto touch : touches) {
        const ItemId old = add("A", kind::list, rootId, {1}, {1});
        const ItemId id = add("A", kind::list, rootId, {1}, {2});
        ASSERT_TRUE(touch(id));
        ASSERT_TRUE(undo());
        EXPECT_EQ(read(id).data, Bytes{2});
        EXPECT_EQ(read(old).data, Bytes{1});
        EXPECT_TRUE(storeDelete(id) && storeDelete(old));
    }
}

TEST_F(Undo, ADeletionElsewhereLeavesAConversationOneStepAndAFolderThatNobodySawIsNone) {
    ASSERT_TRUE(storeOpen());
    for (const char *name : {"A", "B", "X"}) add(name, kind::list, rootId, {1}, {1});
    {
        const UndoGroup group;
        add("A", kind::list, rootId, {2}, {2});
        std::thread([] { EXPECT_TRUE(storeDelete(storeFindItem("X", rootId))); }).join();
        add("B", kind::list, rootId, {2}, {2});
    }
    const ItemId folder = storeResolvePath("/F/G", true);
    EXPECT_FALSE(storeDropFolder(read(folder).parent)) << "it holds something";
    ASSERT_TRUE(storeDropFolder(folder));
    EXPECT_EQ(storeUndoOffer()->name, "X");
    ASSERT_TRUE(undo());
    EXPECT_EQ(storeUndoOffer()->count, 2U);
}

TEST_F(Undo, WhatComesBackTogetherGetsNamesOfItsOwn) {
    ASSERT_TRUE(storeOpen());
    for (const bool taken : {false, true}) {
        const ItemId folders[] = {storeResolvePath("/F", true), storeResolvePath("/G", true)};
        std::vector<ItemId> ids;
        for (const char *name : {"A", "A 2"})
            for (const ItemId folder : folders) ids.push_back(add(name, kind::list, folder));
        {
            const UndoGroup group;
            for (const ItemId id : ids) ASSERT_TRUE(storeDelete(id));
        }
        for (const ItemId folder : folders) ASSERT_TRUE(storeDropFolder(folder));
        if (taken) ids.push_back(add("A", kind::list));
        ASSERT_TRUE(undo());
        std::set<std::string> names;
        for (const ItemEntry &entry : storeListChildren(rootId)) names.insert(entry.name);
        EXPECT_EQ(names.size(), ids.size());
        for (const ItemId id : ids) storeDelete(id);
    }
}

// On real files: what is counted are the store's own allocations.
TEST(StoreMemory, NoFailureIsToldOfAChangeThatWasMade) {
    const ScratchFolder scratch;
    const RecordedUi ui;
    const Bytes large(1200 * 1024, 1);  // once deleted, a gap that is closed at once
    for (int n = 1; n == 1 || memoryHasFailed(); n++) {
        SCOPED_TRACE(n);
        ASSERT_TRUE(storeOpen());
        const ItemId id = Store::add("large", kind::list, rootId, {}, large);
        const ItemId behind = Store::add("behind", kind::list, rootId, {}, {1});
        failMemory(n, true);
        const bool deleted = storeDelete(id);
        failMemory(0, false);
        EXPECT_NE(storeReadEntry(id).has_value(), deleted);
        EXPECT_EQ(storeUndoOffer().has_value(), deleted);
        storeDelete(id);
        EXPECT_TRUE(storeDelete(behind));
        storeClose();
        ASSERT_LT(n, 200);
    }
}

TEST(StoreMemory, ReadingWithoutItGivesNothing) {
    const ScratchFolder scratch;
    const RecordedUi ui;
    ASSERT_TRUE(storeOpen());
    static const ItemId id = Store::add("a name that lies on the heap", kind::list);
    ASSERT_TRUE(storeDelete(Store::add("another", kind::list)));
    bool (*const gives[])() = {
        [] { return !storeListItems().empty(); }, [] { return !storeListChildren(rootId).empty(); },
        [] { return storeReadEntry(id).has_value(); }, [] { return storeUndoOffer().has_value(); }, keepDailyCopy};
    for (const auto given : gives) {
        for (int n = 1; n < 10; n++) {
            failMemory(n, true);
            const bool gave = given();
            failMemory(0, false);
            EXPECT_NE(gave, memoryHasFailed()) << n;
        }
        EXPECT_TRUE(given());
    }
    storeClose();
}

std::string dateOfTest;

// The copies that lie there after a start on that day with a changed library.
std::set<std::string> copiesAfter(const ScratchFolder &scratch, const std::string &today) {
    dateOfTest = today;
    EXPECT_TRUE(storeOpen());
    EXPECT_NE(storeAddItem(Store::item("N", kind::list)), noItem);
    EXPECT_TRUE(keepDailyCopy());
    storeClose();
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(scratch.path + "backups"))
        names.insert(entry.path().filename().string());
    return names;
}

TEST(DailyCopies, AnOddClockAndForeignNamesCostNoTrueCopy) {
    const ScratchFolder scratch;
    const RecordedUi ui;
    const ClockPort clock = clockPort;
    clockPort.localDate = [] { return dateOfTest; };
    std::filesystem::create_directory(scratch.path + "backups");
    std::set<std::string> expected = {"storage-1-original.dat", "storage-2026-02-30.dat", "storage-2026-01-1x.dat"};
    for (const std::string &name : expected) scratch.write("backups/" + name, "mine");
    for (int day = 10; day < 19; day++) {
        scratch.write("backups/storage-2099-01-" + std::to_string(day) + ".dat", "");
        expected.insert("storage-2099-01-" + std::to_string(day) + ".dat");
    }
    struct Start {
        const char *today, *gone;
    };
    for (const Start &start : {Start{"2026-05-01", ""}, Start{"2026-05-02", "2099-01-10"},
                               Start{"1970-01-01", "2026-05-01"}, Start{"2026-05-03", "2099-01-11"}}) {
        expected.erase("storage-" + std::string(start.gone) + ".dat");
        expected.insert("storage-" + std::string(start.today) + ".dat");
        EXPECT_EQ(copiesAfter(scratch, start.today), expected) << start.today;
    }
    std::filesystem::copy_file(scratch.path + "storage.dat", scratch.path + "backups/storage-2099-02-01.dat");
    dateOfTest = "2026-05-04";
    ASSERT_TRUE(storeOpen());
    EXPECT_TRUE(keepDailyCopy());
    storeClose();
    EXPECT_FALSE(fileExists(scratch.path + "backups/storage-2026-05-04.dat")) << "as on the day before";
    clockPort = clock;
}

TEST_F(Undo, OfALibraryThatIsHalfChangedOrDamagedOrOnAFullDiskNoDailyCopyIsTaken) {
    const std::string copy = dailyCopyFolder() + "storage-" + clockPort.localDate() + ".dat";
    ASSERT_TRUE(storeOpen());
    add("A", kind::list);
    Bytes damaged = file();
    damaged[sizeof(MainHeader)] = 0;
    for (const int failing : {1, 2, 3, 1000}) {
        memoryDisk.failingFrom = memoryDisk.operations + 1;
        memoryDisk.failingCount = failing;
        EXPECT_FALSE(keepDailyCopy()) << failing;
        memoryDisk.failingFrom = 0;
        EXPECT_FALSE(memoryDisk.files.contains(copy));
    }
    memoryDisk.failingFrom = memoryDisk.operations + 3;  // once the journal is on the disk
    memoryDisk.failingCount = 1000;
    EXPECT_FALSE(storeResetTemp());
    memoryDisk.failingFrom = 0;
    EXPECT_FALSE(keepDailyCopy());
    EXPECT_FALSE(memoryDisk.files.contains(copy));
    ASSERT_TRUE(restart(damaged) && storeIsDamaged());
    EXPECT_TRUE(keepDailyCopy());
    EXPECT_FALSE(memoryDisk.files.contains(copy));
}

TEST(DailyCopies, OneADayOfTheLastTenDaysWithChanges) {
    const std::string folder = std::filesystem::temp_directory_path().string() + "/numalink-copies-test/";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    const FilePort before = filePort;
    const ClockPort clock = clockPort;
    filePort = systemFilePort;
    clockPort.localDate = [] { return dateOfTest; };
    setLibraryFolder(folder);
    for (int day = 10; day < 24; day++) {
        dateOfTest = "2026-05-" + std::to_string(day);
        for (int start = 0; start < (day == 15 ? 1 : 2); start++) {
            ASSERT_TRUE(storeOpen());
            EXPECT_TRUE(keepDailyCopy());
            if (day % 7 != 0) storeResolvePath("/Day " + dateOfTest, true);
            storeClose();
        }
    }
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder + "backups")) names.push_back(entry.path());
    EXPECT_EQ(names.size(), dailyCopyLimit);
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
    setLibraryFolder(programFolder());
    filePort = before;
    clockPort = clock;
    std::filesystem::remove_all(folder);
}

}  // namespace

}  // namespace numalink
