// Taking back what was done, and the daily copies.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <set>
#include <thread>

#include "calculator/program_info.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "store/care/daily_copies.h"
#include "store/undo/undo.h"
#include "store_support.h"
#include "support/failing_memory.h"

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
    TakenBack done;
    return storeUndo(done);
}

bool redo() {
    TakenBack done;
    return storeRedo(done);
}

// A conversation with a calculator that has begun ahead of an act, and changes afterwards what the act has made: its
// step stands below that of the act all the same.
void changeBehind(const std::function<void()> &act, const std::function<void()> &change) {
    for (const std::uint8_t value : {std::uint8_t{0}, std::uint8_t{1}}) {
        const UndoGroup group;
        Store::add("ELSEWHERE", kind::backup, rootId, {}, {value});
        if (value == 0) continue;
        std::thread(act).join();
        change();
    }
}

TEST_F(Undo, AnActIsAStepByItsNameAndGoesBothWays) {
    const ItemId folder = storeResolvePath("/F", true), inner = storeResolvePath("/F/G", true);
    const ItemId a = add("A", kind::list, rootId, {1}, {1}), b = add("B", kind::list, folder, {2}, {2});
    const ItemId other = add("A", kind::list, folder, {3}, {3});
    add("deep", kind::matrix, inner, {3, 4}, Bytes(300, 5));
    const ItemId late = storeResolvePath("/Late", true);  // a folder that is younger than what it comes to hold
    ASSERT_TRUE(storeMove(folder, late));
    storeSetFlags(late, 0);
    const struct {
        UndoAct act;
        const char *name;
        std::size_t count;
        std::function<bool()> run;
    } rows[] = {
        {UndoAct::edit, "A", 1,
         [&] {
             return storeWriteItem(a, item("A", kind::list, rootId, {1}, {9, 9}));
         }},
        {UndoAct::edit, "A", 1, [&] { return storeRewriteHead(a, Bytes{7}); }},
        {UndoAct::rename, "N", 1, [&] { return storeRename(a, "N", Bytes{8}); }},
        {UndoAct::rename, "H", 1, [&] { return storeRename(late, "H"); }},
        {UndoAct::move, "A", 1, [&] { return storeMove(a, inner); }},
        {UndoAct::move, "B", 2,
         [&] {
             return storeMoveItems({{b, rootId}, {a, late}});
         }},
        {UndoAct::move, "A", 2,
         [&] {
             const UndoGroup group(UndoAct::move);
             return storeMove(a, folder) && storeDelete(other);
         }},
        {UndoAct::replacement, "A", 1, [&] { return add("A", kind::list, rootId, {1}, {2}) != noItem; }},
        {UndoAct::import, "twice", 1,
         [&] {  // beside an item of the same name, as the user wished
             const ItemId parked = storeAddItem(item("B", kind::list, storeTempFolder(), {4}, {4}));
             const UndoGroup group(UndoAct::import, "twice");
             return storeMove(parked, folder);
         }},
        {UndoAct::deletion, "Late", 6, [&] { return storeDelete(late); }},
        {UndoAct::import, "games", 3,
         [&] {
             const ItemId parked = storeAddItem(item("B", kind::list, storeTempFolder(), {4}, {4}));
             const UndoGroup group(UndoAct::import, "games");
             const ItemId made = storeResolvePath("/Late/New/Inner", true);
             return storeMove(parked, made) && storeDelete(b);
         }},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const auto before = seen();
        ASSERT_TRUE(row.run());
        const auto after = seen();
        ASSERT_NE(before, after);
        const auto offer = storeUndoOffer();
        ASSERT_TRUE(offer);
        EXPECT_TRUE(offer->act == row.act && offer->name == row.name && offer->count == row.count) << offer->count;
        for (int round = 0; round < 2; round++) {
            ASSERT_TRUE(undo());
            EXPECT_EQ(seen(), before);
            ASSERT_TRUE(redo());
            EXPECT_EQ(seen(), after);
        }
        ASSERT_TRUE(undo());
        EXPECT_EQ(storeUndoOffer()->name, "F") << "the move from the beginning";
    }
    EXPECT_TRUE(storeRename(a, "A")) << "nothing changes by it";
    EXPECT_TRUE(storeCanRedo());
    add("new", kind::list, inner);
    EXPECT_FALSE(redo()) << "what was put in meanwhile would lose its folder";
    EXPECT_TRUE(uiRecord.lines.empty());
}

TEST_F(Undo, WhatWasChangedSinceStays) {
    const ItemId folder = storeResolvePath("/F", true);
    const std::function<bool(ItemId)> touches[] = {
        [](ItemId id) { return storeRename(id, "B"); }, [&](ItemId id) { return storeMove(id, folder); },
        [](ItemId id) { return storeWriteItem(id, item("A", kind::matrix, rootId, {1}, {2})); },
        [](ItemId id) { return storeWriteItem(id, item("A", kind::list, rootId, {1}, {3})); }};
    for (const auto &touch : touches) {
        const ItemId old = add("A", kind::list, rootId, {1}, {1});
        ItemId id = noItem;
        changeBehind([&] { id = add("A", kind::list, rootId, {1}, {2}); }, [&] { EXPECT_TRUE(touch(id)); });
        const StoredItem touched = read(id);
        ASSERT_TRUE(undo());
        EXPECT_EQ(read(id), touched);
        EXPECT_EQ(read(old).data, Bytes{1});
        EXPECT_EQ(read(old).name, touched.name == "A" && touched.parent == rootId ? "A 2" : "A");
        EXPECT_TRUE(storeDelete(id) && storeDelete(old));
    }
    const ItemId a = add("A", kind::list, rootId, {1}, {1}), older = add("OLD", kind::list, rootId, {1}, {1});
    changeBehind(
        [&] {
            EXPECT_TRUE(storeDelete(older));
            EXPECT_TRUE(storeRename(a, "N"));
        },
        [&] { EXPECT_TRUE(storeRename(a, "M")); });
    TakenBack done;
    EXPECT_FALSE(storeUndo(done));
    EXPECT_TRUE(done.changedSince) << "a step with nothing left to do goes, and the older ones stay";
    EXPECT_EQ(read(a).name, "M");
    ASSERT_TRUE(undo());
    EXPECT_EQ(read(older).data, Bytes{1});
}

TEST_F(Undo, AnImportLeavesAFolderThatHoldsMoreByNowAndTheOldestStepsGoBeyondTheirRoom) {
    const ItemId parked = storeAddItem(item("A", kind::list, storeTempFolder(), {4}, {4}));
    ItemId made = noItem;
    changeBehind(
        [&] {
            const UndoGroup group(UndoAct::import, "games");
            made = storeResolvePath("/New", true);
            EXPECT_TRUE(storeMove(parked, made));
        },
        [&] { add("MINE", kind::list, made); });
    ASSERT_TRUE(undo());
    EXPECT_FALSE(storeReadEntry(parked));
    EXPECT_TRUE(storeItemExists("MINE", made));
    const Bytes large(undoMemoryLimit / 4 + 1, 1);
    for (const char *name : {"1", "2", "3", "4", "5"})
        EXPECT_TRUE(storeDelete(add(name, kind::backup, rootId, {}, large)));
    int steps = 0;
    while (undo()) steps++;
    EXPECT_EQ(steps, 3);
    const ItemId huge = add("HUGE", kind::backup, rootId, {}, Bytes(undoMemoryLimit + 1, 1));
    EXPECT_TRUE(storeDelete(huge) && undo() && storeReadEntry(huge)) << "the newest stays, however large";
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
    ASSERT_TRUE(storeDelete(storeAddItem(item("X", kind::list, storeTempFolder(), {}, {}, NameTaken::keepBoth))));
    ASSERT_TRUE(undo());
    EXPECT_EQ(seen(), before);
    EXPECT_FALSE(storeUndoOffer());
}

TEST_F(Undo, AFailedWriteKeepsTheStep) {
    const ItemId id = add("A", kind::list, rootId, {1}, {1});
    const auto before = seen();
    ASSERT_TRUE(storeDelete(id));
    failDisk(1, 1);
    EXPECT_FALSE(undo());
    EXPECT_FALSE(uiRecord.lines.empty());
    ASSERT_TRUE(undo());
    EXPECT_EQ(seen(), before);
}

TEST_F(Undo, ADeletionElsewhereLeavesAConversationOneStepAndAFolderThatNobodySawIsNone) {
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
struct WithoutMemory : ::testing::Test {
    static bool failing(int n, bool (*operation)()) {
        failMemory(n, true);
        const bool result = operation();
        failMemory(0, false);
        return result;
    }
    const ScratchFolder scratch;
    const RecordedUi ui;
    const bool open = storeOpen();
    inline static ItemId id = noItem;
};

TEST_F(WithoutMemory, NoFailureIsToldOfAChangeThatWasMade) {
    const Bytes large(1200 * 1024, 1);  // once deleted, a gap that is closed at once
    for (int n = 1; n == 1 || failingMemory.failed; n++) {
        ASSERT_TRUE(storeOpen());
        id = Store::add("large", kind::list, rootId, {}, large);
        const ItemId behind = Store::add("behind", kind::list, rootId, {}, {1});
        const bool deleted = failing(n, [] { return storeDelete(id); });
        EXPECT_NE(storeReadEntry(id).has_value(), deleted) << n;
        EXPECT_EQ(storeUndoOffer().has_value(), deleted) << n;
        storeDelete(id);
        EXPECT_TRUE(storeDelete(behind));
        storeClose();
    }
}

TEST_F(WithoutMemory, ReadingGivesNothing) {
    id = Store::add("a name that lies on the heap", kind::list);
    ASSERT_TRUE(storeDelete(Store::add("another", kind::list)));
    bool (*const gives[])() = {
        [] { return !storeListItems().empty(); }, [] { return !storeListChildren(rootId).empty(); },
        [] { return storeReadEntry(id).has_value(); }, [] { return storeUndoOffer().has_value(); }, keepDailyCopy};
    for (const auto given : gives) {
        for (int n = 1; n < 10; n++) {
            const bool gave = failing(n, given);
            EXPECT_NE(gave, failingMemory.failed) << n;
        }
        EXPECT_TRUE(given());
    }
    storeClose();
}

TEST_F(Undo, OfALibraryThatIsHalfChangedOrDamagedOrOnAFullDiskNoDailyCopyIsTaken) {
    const std::string copy = dailyCopyFolder() + "storage-" + clockPort.localDate() + ".dat";
    const auto failing = [](int n, auto operation) {
        failDisk(n, 1000);
        const bool result = operation();
        simulatedDisk.failingFrom = 0;
        return result;
    };
    const auto copied = [&] {
        const bool there = simulatedDisk.now.names.contains(copy);
        EXPECT_TRUE(!there || diskFile(copy) == file());
        return simulatedDisk.now.names.erase(copy) > 0;
    };
    add("A", kind::list);
    const Bytes sound = file();
    int broken = 0;
    for (int n = 1; n < 12; n++) {
        const bool kept = failing(n, keepDailyCopy);
        EXPECT_TRUE(copied() || !kept) << n;
        ASSERT_TRUE(restart(sound));
        failing(n, [] { return storeResetTemp(); });
        const bool usable = storeResetTemp();
        if (!usable) broken++;
        EXPECT_EQ(keepDailyCopy(), usable) << n;
        EXPECT_EQ(copied(), usable) << n;
    }
    EXPECT_GT(broken, 0);
    Bytes damaged = sound;
    damaged[sizeof(MainHeader)] = 0;
    ASSERT_TRUE(restart(damaged) && storeIsDamaged());
    EXPECT_TRUE(keepDailyCopy() && !copied());
}

struct DailyCopies : ::testing::Test {
    DailyCopies() {
        clockPort.localDate = [] { return today; };
    }
    ~DailyCopies() override { clockPort = systemClock; }

    // A run of the program on that day, and the copies that lie there after it.
    std::set<std::string> run(const std::string &date, bool changes) {
        today = date;
        EXPECT_TRUE(storeOpen(WhenEmptied::begin));
        EXPECT_TRUE(keepDailyCopy());
        if (changes) storeResolvePath("/Day " + today, true);
        storeClose();
        std::set<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(backups))
            names.insert(entry.path().filename().string());
        return names;
    }
    inline static std::string today;
    const RecordedUi ui;
    const ScratchFolder scratch;
    const std::string backups = scratch.path + "backups/";
};

TEST_F(DailyCopies, AnOddClockAndForeignNamesCostNoTrueCopy) {
    std::filesystem::create_directory(backups);
    std::set<std::string> expected = {"storage-1-original.dat", "storage-2026-02-30.dat", "storage-2026-01-1x.dat"};
    for (int day = 10; day < 19; day++) expected.insert("storage-2099-01-" + std::to_string(day) + ".dat");
    for (const std::string &name : expected) scratch.write("backups/" + name, "");
    struct Run {
        const char *today = "", *gone = "";
        bool changes = true, copied = true;
    };
    for (const Run &row : {Run{"2026-05-01", ""}, Run{"2026-05-02", "2099-01-10"}, Run{"1970-01-01", "2026-05-01"},
                           Run{"2026-05-03", "2099-01-11", false}, Run{"2026-05-04", "", true, false}}) {
        expected.erase("storage-" + std::string(row.gone) + ".dat");
        if (row.copied) expected.insert("storage-" + std::string(row.today) + ".dat");
        EXPECT_EQ(run(row.today, row.changes), expected) << row.today;
    }
}

TEST_F(DailyCopies, OneADayOfTheLastTenDaysWithChanges) {
    std::set<std::string> names;
    for (int day = 10; day < 24; day++)
        for (int start = 0; start < (day == 15 ? 1 : 2); start++)
            names = run("2026-05-" + std::to_string(day), day % 7 != 0);
    EXPECT_EQ(names.size(), dailyCopyLimit);
    EXPECT_FALSE(names.contains("storage-2026-05-15.dat")) << "nothing had changed on the day before";
    EXPECT_TRUE(names.contains("storage-2026-05-14.dat") && names.contains("storage-2026-05-23.dat"));
    EXPECT_FALSE(names.contains("storage-2026-05-12.dat"));
    std::filesystem::copy_file(backups + "storage-2026-05-14.dat", scratch.path + "storage.dat",
                               std::filesystem::copy_options::overwrite_existing);
    ASSERT_TRUE(storeOpen());
    EXPECT_TRUE(storeItemExists("Day 2026-05-13", rootId));
    EXPECT_FALSE(storeItemExists("Day 2026-05-15", rootId));
    storeClose();
}

// As a library from elsewhere may have it.
TEST_F(Undo, AnItemBesideOneOfItsNameKeepsItWhenItsEditIsTakenBack) {
    const ItemId a = add("A", kind::matrix, rootId, {1}, {1}), b = add("B", kind::matrix, rootId, {1}, {2});
    ASSERT_TRUE(storeRename(b, "A"));
    const std::vector<StoredItem> before = seen();
    for (const std::uint8_t value : {std::uint8_t{3}, std::uint8_t{4}}) ASSERT_TRUE(storeRewriteHead(a, Bytes{value}));
    EXPECT_TRUE(undo() && undo());
    EXPECT_EQ(seen(), before);
}

// NUMALINK_EDITS tells how many there are in all.
TEST_F(Undo, RandomChangesComeBackToTheByte) {
    simulatedDisk.remembers = false;
    const char *wanted = std::getenv("NUMALINK_EDITS");
    const long edits = wanted != nullptr ? std::atol(wanted) : 2000;
    std::mt19937 source(5);
    const auto dice = [&](std::uint32_t limit) { return static_cast<std::uint32_t>(source()) % limit; };
    const ItemId folders[] = {rootId, storeResolvePath("/F", true), storeResolvePath("/F/G", true)};
    std::vector<ItemId> ids;
    for (int i = 0; i < 8; i++) ids.push_back(add("P" + std::to_string(i), kind::matrix, folders[i % 3], {1}, {2, 3}));
    for (long done = 0; done < edits;) {
        const std::vector<StoredItem> before = seen();
        const std::uint32_t burst = 1 + dice(20);
        std::uint32_t steps = 0;
        for (std::uint32_t i = 0; i < burst; i++, done++) {
            const ItemId id = ids[dice(8)];
            const auto entry = storeReadEntry(id);
            if (!entry) continue;
            const std::vector<StoredItem> earlier = seen();
            const Bytes data(dice(60), static_cast<std::uint8_t>(dice(256)));
            switch (dice(8)) {
                case 0:
                    storeDelete(id);
                    break;
                // As whoever renames and moves does: to names that are free.
                case 1:
                    if (const std::string name = "N" + std::to_string(dice(1000));
                        !storeItemExists(name, entry->parent))
                        storeRename(id, name);
                    break;
                case 2:
                    if (const ItemId to = folders[dice(3)]; !storeItemExists(entry->name, to)) storeMove(id, to);
                    break;
                default:
                    storeWriteItem(
                        id, item(entry->name, kind::matrix, entry->parent, {static_cast<std::uint8_t>(dice(9))}, data));
            }
            if (seen() != earlier) steps++;
        }
        for (; steps > 0; steps--) {
            TakenBack taken;
            ASSERT_TRUE(storeUndo(taken)) << done << ": " << (taken.changedSince ? "changed since" : "failed") << " "
                                          << testing::PrintToString(uiRecord.lines);
        }
        ASSERT_EQ(seen(), before) << done;
    }
}

}  // namespace

}  // namespace numalink
