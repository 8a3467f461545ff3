// Every file operation and every allocation of each change fails in turn, once or for good: the library on the disk
// stays valid, the user is told, and the program goes on or refuses further changes.
#include <gmock/gmock.h>
#include <sys/mount.h>

#include "store/care/daily_copies.h"
#include "store/care/library_check.h"
#include "store/file/journal.h"
#include "store/store_worker.h"
#include "store/undo/undo.h"
#include "support/failing_memory.h"
#include "telling/language_table.h"

namespace numalink {
namespace {

const NewItem another = Store::item("N", kind::program, rootId, Bytes(9, 1), Bytes(700, 2));
const NewItem replacing = Store::item("A", kind::program, 2, {3}, Bytes(60, 3));
const NewItem edited = Store::item("N", kind::program, 2, {4}, {4});
const std::vector<NewItem> several = {Store::item("1", kind::list), Store::item("2", kind::list, 2)};
const Bytes newHead{5};
const std::vector<ItemMove> moves = {{4, rootId}, {6, rootId}};
const std::vector<ItemPlacing> placings = {{4, 2, "D"}};
const std::vector<ItemId> placedOver = {6};
TakenBack shown;

// One after the other on a library of folder "F" (id 2), "A" in it (3) and "B" (4). They ask for no memory themselves.
using Operation = bool (*)();
constexpr Operation operations[] = {
    [] { return storeAddItem(another) != noItem; },
    [] { return storeAddItem(replacing) != noItem; },
    [] { return storeRename(4, "C", newHead); },
    [] { return storeWriteItem(storeFindItem("N", rootId), edited); },
    [] { return storeResolvePath("/X/Y/", true) != noItem; },
    [] { return storeStandardFolder(1003) != noItem; },
    [] { return !storeAddItems(several).empty(); },
    [] { return storeMove(4, 2); },
    [] { return storeMoveItems(moves); },
    [] { return storePlaceItems(placings, placedOver); },
    [] { return storeRewriteHead(4, newHead); },
    [] { return storeSetFlags(2, 1); },
    [] { return storeUndo(shown); },
    [] { return storeRedo(shown); },
    [] { return storeDelete(2); },
    [] { return storeResetTemp(); },
    [] {
        storeClose();
        return storeOpen() && !storeIsDamaged();  // an item that can't be read counts as damage
    },
};

int syncOfDeleting = 0;
constexpr Operation deleting = [] { return storeDelete(2); };

// What has to be done ahead of an operation in the same run.
void prepare(Operation operation) {
    const bool redo = operation == operations[13];
    EXPECT_TRUE(!(redo || operation == operations[12]) || storeDelete(4));
    EXPECT_TRUE(!redo || storeUndo(shown));
}

struct Failures : Store {
    Failures() {
        storeOpen();
        add("F", kind::folder);
        add("A", kind::program, 2, {1}, Bytes(40, 1));
        add("B", kind::program, rootId, {2}, Bytes(20, 2));
        storeTempFolder();
        original = libraryState();
        storeClose();
        fresh = simulatedDisk.now;
        storeOpen();
    }

    static void failDiskAsTold(int n, bool forGood) { failDisk(n, forGood ? 1000000 : 1); }
    static bool allocationHasFailed() { return failingMemory.failed; }
    static bool diskHasFailed() { return simulatedDisk.operations >= simulatedDisk.failingFrom; }

    // Lets every n-th attempt of each operation fail, from the same disk each time.
    void sweep(void (*fail)(int, bool), bool (*hasFailed)(), bool forGood) {
        openOn(fresh);
        for (const Operation &operation : operations) {
            storeClose();
            const DiskImage image = simulatedDisk.now;
            ASSERT_TRUE(storeOpen());
            prepare(operation);
            const LibraryState before = libraryState();
            ASSERT_TRUE(operation()) << &operation - operations;
            const LibraryState after = libraryState();
            int n = 1;
            for (bool failed = true; failed && !HasFatalFailure(); n++) {
                SCOPED_TRACE(n);
                failed = attempt(image, operation, fail, hasFailed, n, forGood, before, after);
            }
            attempts += n;
            EXPECT_GT(n, 3);
            powerOff();
            ASSERT_TRUE(openOn(image));
            prepare(operation);
            ASSERT_TRUE(operation());
        }
    }

    bool attempt(const DiskImage &image, Operation operation, void (*fail)(int, bool), bool (*hasFailed)(), int n,
                 bool forGood, const LibraryState &before, const LibraryState &after) {
        EXPECT_TRUE(openOn(image));
        prepare(operation);
        uiRecord.lines.clear();
        fail(n, forGood);
        const bool done = operation();
        const bool failed = hasFailed();
        fail(0, false);
        const std::size_t told = uiRecord.lines.size();
        if (!storeIsOpen() || storeIsDamaged()) storeClose();
        EXPECT_TRUE(storeOpen());
        const bool goesOn = storeWriteHead();  // once there is room again
        checkAfter(done, told, before, after);
        if (!goesOn) refusals++;
        EXPECT_TRUE(goesOn || uiRecord.lines.size() > told);
        if (n % 2 == 0) powerOff();  // a crash rather than an end
        storeClose();
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
        for (const ItemEntry &entry : storeListItems()) listed.push_back(entry.id);
        EXPECT_EQ(listed, ids) << "the tables in memory";
    }

    // The disk as it stands when the power goes while a change is half written.
    DiskImage diskOfHalfAChange(Operation change) {
        for (int n = 1;; n++) {
            EXPECT_TRUE(openOn(fresh));
            failDisk(n, 1000000);
            const bool done = change();
            powerOff();
            EXPECT_FALSE(done) << "nothing was half done";
            if (done || libraryBytes(simulatedDisk.now) != libraryBytes(fresh)) return simulatedDisk.now;
        }
    }

    // The disk as a process leaves it that is killed behind this work.
    static DiskImage diskAfter(const DiskImage &image, Operation work) {
        EXPECT_TRUE(openOn(image));
        simulatedDisk.operations = 0;
        work();
        syncOfDeleting = simulatedDisk.lastSync;
        powerOff();
        return simulatedDisk.now;
    }

    bool noBoxes = false;
    int attempts = 0, refusals = 0;
    DiskImage fresh;
    LibraryState original;
};

TEST_F(Failures, OfTheDisk) {
    sweep(failDiskAsTold, diskHasFailed, false);
    EXPECT_EQ(refusals, 0);
    sweep(failDiskAsTold, diskHasFailed, true);
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
    const DiskImage half = diskOfHalfAChange(deleting);
    for (const bool forGood : {false, true}) {
        for (int n = 1, tried = 0; tried == 0; n++) {
            SCOPED_TRACE(n);
            diskLoad(half);
            uiRecord.lines.clear();
            failDiskAsTold(n, forGood);
            const bool opened = storeOpen();
            if (!diskHasFailed()) tried = n;
            EXPECT_TRUE(opened || uiRecord.lines.size() == 1);
            failDisk(0, 0);
            storeClose();
            ASSERT_TRUE(storeOpen());
            EXPECT_FALSE(storeIsDamaged());
            EXPECT_TRUE(isAfterStart(libraryState(), original));
            storeClose();
        }
    }
}

struct JournalCase {
    const char *what;
    const Bytes &library;
    Bytes journal;
    std::size_t changed;
    std::vector<std::string> lines;
    bool keptAtChange;
};

// What the next start makes of a journal, beside a library that may have been put there from elsewhere.
TEST_F(Failures, OfJournalsThatCannotBeUsed) {
    storeClose();
    const DiskImage image = simulatedDisk.now;
    const Bytes sound = libraryBytes(image), half = libraryBytes(diskOfHalfAChange(deleting));
    const Bytes journal = bytesAt(diskOfHalfAChange(deleting), journalPath);
    const std::size_t last = sizeof(JournalHead) + readLittle32(journal, offsetof(JournalHead, bodySize)) - 1;
    const Bytes ofRenaming = bytesAt(diskOfHalfAChange(operations[2]), journalPath);
    const Operation failing = [] {
        failDisk(syncOfDeleting, 1);
        return storeDelete(2);
    };
    const Bytes renamed = libraryBytes(diskAfter(image, [] { return storeRename(4, "other"); }));
    diskAfter(image, deleting);
    const Bytes takenBack = bytesAt(diskAfter(image, failing), journalPath);
    const Bytes broughtBack = bytesAt(diskAfter(diskOfHalfAChange(deleting), [] { return true; }), journalPath);
    const Bytes longer = libraryBytes(diskAfter(image, operations[0]));
    const std::string damaged = "box 36 / 2 1 1", aside = std::string("box 166 / 2 ") + journalPath + ".kept-1";
    const JournalCase cases[] = {
        {"of a later version", half, journal, 16, {std::string("box 33 / 2 ") + journalPath}, false},
        {"rotten head of a change half done", half, journal, 30, {damaged}, true},
        {"rotten body of a change half done", half, journal, last, {damaged}, true},
        {"never whole", sound, journal, last, {}, false},
        {"of another head", longer, journal, SIZE_MAX, {aside}, true},
        {"of another head, and an item alike", longer, ofRenaming, SIZE_MAX, {aside}, true},
        {"of a head alike, and another name", renamed, ofRenaming, SIZE_MAX, {aside}, true},
        {"of a change that was done",
         longer,
         bytesAt(diskAfter(image, operations[1]), journalPath),
         SIZE_MAX,
         {},
         false},
        {"of a change brought back", longer, broughtBack, SIZE_MAX, {}, false},
        {"of a change taken back", longer, takenBack, SIZE_MAX, {}, false},
    };
    for (const auto &[what, library, bytes, changed, lines, keptAtChange] : cases) {
        SCOPED_TRACE(what);
        DiskImage with;
        with.names = {{libraryPath, 1}, {journalPath, 2}};
        with.files = {{1, library}, {2, bytes}};
        if (changed < bytes.size()) with.files[2][changed] ^= 0x40;
        const Bytes found = with.files[2];
        diskLoad(with);
        uiRecord.lines.clear();
        const bool opened = storeOpen();
        EXPECT_EQ(uiRecord.lines, lines);
        EXPECT_EQ(opened, changed != 16);
        storeClose();
        EXPECT_EQ(libraryBytes(simulatedDisk.now), library) << "nothing is written";
        EXPECT_TRUE(!storeOpen() || storeRename(4, "B"));
        EXPECT_EQ(bytesAt(simulatedDisk.now, std::string(journalPath) + ".kept-1"), keptAtChange ? found : Bytes());
        storeClose();
        EXPECT_TRUE(opened || bytesAt(simulatedDisk.now, journalPath) == found);
    }
}

TEST_F(Failures, OfNamesThatLeadElsewhere) {
    for (const char *name : {libraryPath, journalPath}) {
        for (const int other : {0, 99}) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(other));
            ASSERT_TRUE(openOn(fresh) && storeRename(4, "C"));
            simulatedDisk.now.names.erase(name);
            simulatedDisk.now.files[99] = {1};
            if (other != 0) simulatedDisk.now.names[name] = other;
            const DiskImage found = simulatedDisk.now;
            uiRecord.lines.clear();
            EXPECT_FALSE(storeRename(4, "D") || storeRename(4, "E"));
            EXPECT_EQ(uiRecord.lines, std::vector<std::string>(2, "box 166 / 2"));
            EXPECT_TRUE(storeItemExists("C", rootId));
            storeClose();
            EXPECT_TRUE(simulatedDisk.now.names == found.names && simulatedDisk.now.files == found.files);
        }
    }
}

TEST(SystemFiles, AreFollowedThroughALinkAndWatchedForTheirNames) {
    const RecordedUi ui;
    const ScratchFolder folder;
    const std::string file = folder.path + "elsewhere/library";
    std::filesystem::create_directory(folder.path + "elsewhere");
    std::filesystem::create_symlink("elsewhere/library", folder.path + "storage.dat");
    folder.write("elsewhere/library", "");
    std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    ASSERT_TRUE(storeOpen());
    EXPECT_NE(storeResolvePath("/A", true), noItem);
    std::filesystem::create_symlink("elsewhere/library", folder.path + "copy-new");
    EXPECT_TRUE(storeCopyTo(folder.path + "copy"));
    for (const std::string &made : {file + "-journal", folder.path + "copy"}) {
        EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(made)));
        EXPECT_EQ(std::filesystem::status(made).permissions(), std::filesystem::status(file).permissions())
            << "nobody else may read it";
    }
    std::filesystem::rename(file, file + "-moved");
    EXPECT_EQ(storeResolvePath("/B", true), noItem);
    std::filesystem::rename(file + "-moved", file);
    EXPECT_EQ(storeResolvePath("/B", true), noItem) << "what came meanwhile isn't known";
    EXPECT_EQ(uiRecord.lines.size(), 2U);
    storeClose();
    EXPECT_TRUE(storeOpen() && storeResolvePath("/B", true) != noItem);
    storeClose();
}

TEST(SystemFiles, AreNeverWrittenThroughALinkInTheJournalsPlace) {
    const RecordedUi ui;
    languageLoad("English", "English");
    const ScratchFolder folder;
    const std::string journal = folder.path + "storage.dat-journal";
    folder.write("letter", "dear");
    for (int start = 0; start < 2; start++) {  // the second makes the temporary folder
        ASSERT_TRUE(storeOpen());
        storeClose();
    }
    for (const bool symbolic : {true, false}) {
        ASSERT_TRUE(storeOpen());
        symbolic ? std::filesystem::create_symlink("letter", journal)
                 : std::filesystem::create_hard_link(folder.path + "letter", journal);
        uiRecord.boxes.clear();
        EXPECT_EQ(storeResolvePath("/A", true), noItem);
        storeClose();
        EXPECT_FALSE(storeOpen());
        ASSERT_EQ(uiRecord.boxes.size(), 2U);
        EXPECT_THAT(uiRecord.boxes[0].body, ::testing::HasSubstr("storage.dat-journal"));
        EXPECT_THAT(uiRecord.boxes[1].body, ::testing::HasSubstr(uiRecord.boxes[0].body));
        EXPECT_EQ(folder.read("letter"), "dear");
        std::filesystem::remove(journal);
    }
    ASSERT_TRUE(storeOpen() && storeResolvePath("/A", true) != noItem);
    storeClose();
}

// A disk that is really full, where the system allows one to be made.
TEST(FullDisk, RefusesAndGoesOnWhenThereIsRoomAgain) {
    const RecordedUi ui;
    const ScratchFolder folder;
    if (mount("tmpfs", folder.path.c_str(), "tmpfs", 0, "size=200k") != 0)
        GTEST_SKIP() << "only root may mount a file system of its own";
    languageLoad("English", "English");
    ASSERT_TRUE(storeOpen());
    ASSERT_NE(storeTempFolder(), noItem);
    const NewItem item = Store::item("P", kind::program, rootId, Bytes(32, 1), Bytes(3000, 2));
    std::size_t added = 0;
    while (storeAddItems({item}).size() == 1) added++;
    EXPECT_GT(added, 10U);
    EXPECT_EQ(uiRecord.lines.size(), 1U);
    const LibraryState full = libraryState();
    EXPECT_EQ(full.size(), added + 1);
    std::ofstream other(folder.path + "other", std::ios::binary);  // some other program takes what room there is
    while (other << std::string(512, 'o') << std::flush) {
    }
    EXPECT_TRUE(storeDelete(full[1].id));
    storeClose();
    while (other.clear(), other << std::string(512, 'o') << std::flush) {
    }
    uiRecord.boxes.clear();
    ASSERT_TRUE(storeOpen());
    EXPECT_FALSE(storeIsDamaged());
    EXPECT_EQ(libraryState().size(), added);
    EXPECT_FALSE(storeDelete(full[2].id)) << "a run that begins with the disk full";
    ASSERT_EQ(uiRecord.boxes.size(), 1U);
    EXPECT_THAT(uiRecord.boxes[0].body, ::testing::ContainsRegex("full.* 1[0-9] KB"));
    storeClose();
    std::filesystem::rename(folder.path + "storage.dat", folder.path + "away");
    EXPECT_FALSE(storeOpen()) << "no room for an empty library";
    ASSERT_EQ(uiRecord.boxes.size(), 2U);
    EXPECT_THAT(uiRecord.boxes[1].body, ::testing::ContainsRegex("full.* [0-9]+ KB"));
    std::filesystem::rename(folder.path + "away", folder.path + "storage.dat");
    ASSERT_TRUE(storeOpen());
    ASSERT_EQ(mount("tmpfs", folder.path.c_str(), "tmpfs", MS_REMOUNT, "size=2m"), 0);
    EXPECT_TRUE(storeDelete(full.back().id));
    EXPECT_EQ(storeAddItems({item}).size(), 1U);
    storeClose();
    umount(folder.path.c_str());
}

// A medium that is write-protected, where the system allows one to be made.
TEST(ReadOnlyDisk, IsReadAndAChangeIsRefusedAndTold) {
    const RecordedUi ui;
    const ScratchFolder folder;
    if (mount("tmpfs", folder.path.c_str(), "tmpfs", 0, "size=1m") != 0)
        GTEST_SKIP() << "only root may mount a file system of its own";
    languageLoad("English", "English");
    EXPECT_FALSE(storeOpen(WhenEmptied::neverBegin) || std::filesystem::exists(folder.path + "storage.dat"));
    ASSERT_TRUE(storeOpen());
    ASSERT_NE(storeResolvePath("/A/", true), noItem);
    const LibraryState whole = libraryState();
    storeClose();
    const auto protect = [&](bool on) {
        ASSERT_EQ(mount("tmpfs", folder.path.c_str(), "tmpfs", MS_REMOUNT | (on ? MS_RDONLY : 0), ""), 0);
    };
    protect(true);
    uiRecord.boxes.clear();
    ASSERT_TRUE(storeOpen());
    EXPECT_TRUE(storeIsReadOnly() && keepDailyCopy());
    EXPECT_EQ(libraryState(), whole);
    EXPECT_TRUE(uiRecord.boxes.empty());
    EXPECT_EQ(storeResolvePath("/B/", true), noItem);
    ASSERT_EQ(uiRecord.boxes.size(), 1U);
    EXPECT_THAT(uiRecord.boxes[0].body, ::testing::HasSubstr("write protection"));
    storeClose();
    EXPECT_EQ(checkLibrary(false).outcome, CheckOutcome::checked);
    EXPECT_EQ(checkLibrary(true).outcome, CheckOutcome::unreadable);
    protect(false);
    ASSERT_TRUE(storeOpen());
    EXPECT_FALSE(storeIsReadOnly());
    EXPECT_NE(storeResolvePath("/B/", true), noItem);
    storeClose();
    umount(folder.path.c_str());
}

}  // namespace
}  // namespace numalink
