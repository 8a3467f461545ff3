// Every file operation and every allocation of each change fails in turn, once or for good: the library on the disk
// stays valid, the user is told, and the program goes on or refuses further changes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include "store/store_worker.h"
#include "support/failing_memory.h"

namespace numalink {
namespace {

const NewItem another = Store::item("N", kind::program, rootId, Bytes(9, 1), Bytes(700, 2));
const NewItem replacing = Store::item("A", kind::program, 2, {3}, Bytes(60, 3));
const NewItem edited = Store::item("N", kind::program, 2, {4}, {4});
const std::vector<NewItem> several = {Store::item("1", kind::list), Store::item("2", kind::list, 2)};
const Bytes newHead{5};

// One after the other on a library of folder "F" (id 2), "A" in it (3) and "B" (4). They ask for no memory themselves.
using Operation = bool (*)();
constexpr Operation operations[] = {
    [] { return storeAddItem(another) != noItem; },
    [] { return storeAddItem(replacing) != noItem; },
    [] { return storeRename(4, "C", newHead); },
    [] { return storeWriteItem(storeFindItem("N", rootId), edited); },
    [] { return storeResolvePath("/X/Y/", true) != noItem; },
    [] { return !storeAddItems(several).empty(); },
    [] { return storeMove(4, 2); },
    [] { return storeRewriteHead(4, newHead); },
    [] { return storeSetFlags(2, 1); },
    [] { return storeDelete(2); },
    [] { return storeResetTemp(); },
};

struct Failures : Store {
    Failures() {
        storeOpen();
        add("F", kind::folder);
        add("A", kind::program, 2, {1}, Bytes(40, 1));
        add("B", kind::program, rootId, {2}, Bytes(20, 2));
        fresh = simulatedDisk.now;
    }

    static void failDisk(int n, bool forGood) {
        simulatedDisk.operations = 0;
        simulatedDisk.failingFrom = n;
        simulatedDisk.failingCount = forGood ? 1000000 : 1;
    }
    static bool allocationHasFailed() { return failingMemory.failed; }
    static bool diskHasFailed() { return simulatedDisk.operations >= simulatedDisk.failingFrom; }

    // Lets every n-th attempt of each operation fail, from the same disk each time.
    void sweep(void (*fail)(int, bool), bool (*hasFailed)(), bool forGood) {
        storeClose();
        diskLoad(fresh);
        storeOpen();
        for (const Operation operation : operations) {
            storeClose();
            const DiskImage image = simulatedDisk.now;
            ASSERT_TRUE(storeOpen());
            const LibraryState before = libraryState();
            ASSERT_TRUE(operation());
            const LibraryState after = libraryState();
            int n = 1;
            for (bool failed = true; failed && !HasFatalFailure(); n++) {
                SCOPED_TRACE(n);
                failed = attempt(image, operation, fail, hasFailed, n, forGood, before, after);
            }
            attempts += n;
            EXPECT_GT(n, 3);
            simulatedDisk.dead = true;
            storeClose();
            diskLoad(image);
            ASSERT_TRUE(storeOpen() && operation());
        }
    }

    bool attempt(const DiskImage &image, Operation operation, void (*fail)(int, bool), bool (*hasFailed)(), int n,
                 bool forGood, const LibraryState &before, const LibraryState &after) {
        storeClose();
        diskLoad(image);
        EXPECT_TRUE(storeOpen());
        uiRecord.lines.clear();
        fail(n, forGood);
        const bool done = operation();
        const bool failed = hasFailed();
        fail(0, false);
        const std::size_t told = uiRecord.lines.size();
        const bool goesOn = storeWriteHead();  // once there is room again
        checkAfter(done, told, before, after);
        if (!goesOn) refusals++;
        EXPECT_TRUE(goesOn || uiRecord.lines.size() > told);
        if (n % 2 == 0) simulatedDisk.dead = true;  // a crash rather than an end
        storeClose();
        simulatedDisk.dead = false;
        EXPECT_TRUE(storeOpen() && !storeIsDamaged());
        const LibraryState found = libraryState();
        EXPECT_TRUE(!goesOn || found == (done ? after : before));
        EXPECT_TRUE(found == before || found == after);
        return failed;
    }

    void checkAfter(bool done, std::size_t told, const LibraryState &before, const LibraryState &after) {
        EXPECT_TRUE(told == (done ? 0U : 1U) || (noBoxes && told == 0)) << told;
        std::vector<ItemId> ids;
        for (const StoredItem &item : done ? after : before) ids.push_back(item.id);
        std::ranges::sort(ids);
        std::vector<ItemId> listed;
        for (const ItemEntry &entry : storeListItems())
            if (entry.kind != kind::temporaryFolder) listed.push_back(entry.id);
        EXPECT_EQ(listed, ids) << "the tables in memory";
    }

    // The disk as it stands when the power goes while a change is half written.
    static DiskImage diskOfHalfAChange() {
        failDisk(14, true);  // while the library itself is written, behind reads and the journal
        EXPECT_FALSE(storeDelete(2));
        EXPECT_FALSE(storeWriteHead());
        simulatedDisk.dead = true;
        storeClose();
        return simulatedDisk.now;
    }

    bool noBoxes = false;
    int attempts = 0, refusals = 0;
    DiskImage fresh;
};

TEST_F(Failures, OfTheDisk) {
    sweep(failDisk, diskHasFailed, false);
    EXPECT_EQ(refusals, 0);
    sweep(failDisk, diskHasFailed, true);
    EXPECT_GT(refusals, 0) << "what can't be brought back ends all changes";
    std::printf("attempts: %d, further changes refused: %d\n", attempts, refusals);
}

TEST_F(Failures, OfMemory) {
    sweep(failMemory, allocationHasFailed, false);
    noBoxes = true;
    sweep(failMemory, allocationHasFailed, true);
    EXPECT_EQ(refusals, 0);
    std::printf("attempts: %d\n", attempts);
}

// A library whose last change was cut off half-way, so that opening brings it back.
TEST_F(Failures, OfTheDiskWhileAChangeIsBroughtBack) {
    const LibraryState before = libraryState();
    const DiskImage half = diskOfHalfAChange();
    for (const bool forGood : {false, true}) {
        for (int n = 1, tried = 0; tried == 0; n++) {
            SCOPED_TRACE(n);
            diskLoad(half);
            uiRecord.lines.clear();
            failDisk(n, forGood);
            const bool opened = storeOpen();
            if (!diskHasFailed()) tried = n;
            EXPECT_TRUE(opened || uiRecord.lines.size() == 1);
            failDisk(0, false);
            storeClose();
            ASSERT_TRUE(storeOpen());
            EXPECT_FALSE(storeIsDamaged());
            EXPECT_TRUE(libraryState() == before);
            storeClose();
        }
    }
}

TEST_F(Failures, AJournalOfAnotherFileIsSetAside) {
    const LibraryState before = libraryState();
    storeClose();
    const Bytes backup = simulatedDisk.now.files[simulatedDisk.now.names["/library/storage.dat"]];
    ASSERT_TRUE(storeOpen());
    ASSERT_NE(storeAddItem(another), noItem);
    DiskImage image = diskOfHalfAChange();
    image.files[image.names["/library/storage.dat"]] = backup;
    diskLoad(image);
    uiRecord.lines.clear();
    ASSERT_TRUE(storeOpen());
    EXPECT_EQ(uiRecord.lines, std::vector<std::string>{"box 166 / 2 /library/storage.dat-journal.kept-1"});
    EXPECT_TRUE(libraryState() == before);
    EXPECT_TRUE(simulatedDisk.now.names.contains("/library/storage.dat-journal.kept-1"));
}

// A disk that is really full, where the system allows one to be made.
TEST(FullDisk, RefusesAndGoesOnWhenThereIsRoomAgain) {
    const RecordedUi ui;
    const ScratchFolder folder;
    if (mount("tmpfs", folder.path.c_str(), "tmpfs", 0, "size=200k") != 0)
        GTEST_SKIP() << "only root may mount a file system of its own";
    ASSERT_TRUE(storeOpen());
    const NewItem item = Store::item("P", kind::program, rootId, Bytes(32, 1), Bytes(3000, 2));
    std::size_t added = 0;
    while (storeAddItems({item}).size() == 1) added++;
    EXPECT_GT(added, 10U);
    EXPECT_EQ(uiRecord.lines.size(), 1U);
    const LibraryState full = libraryState();
    EXPECT_EQ(full.size(), added);
    const bool deleted = storeDelete(full.front().id);
    EXPECT_EQ(libraryState().size(), added - (deleted ? 1 : 0));
    storeClose();
    uiRecord.lines.clear();
    ASSERT_TRUE(storeOpen());
    EXPECT_FALSE(storeIsDamaged());
    EXPECT_EQ(libraryState().size(), added - (deleted ? 1 : 0));
    ASSERT_EQ(mount("tmpfs", folder.path.c_str(), "tmpfs", MS_REMOUNT, "size=2m"), 0);
    EXPECT_TRUE(storeDelete(full.back().id));
    EXPECT_EQ(storeAddItems({item}).size(), 1U);
    storeClose();
    umount(folder.path.c_str());
}

}  // namespace
}  // namespace numalink
