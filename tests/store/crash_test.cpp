// Power that goes at every step of every operation, and a process that is killed at any instant: what was acknowledged
// is there, and of the operation under way all or nothing.
#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "store/care/library_check.h"
#include "store/store_worker.h"
#include "support/rounds.h"

namespace numalink {
namespace {

using ::testing::IsEmpty;

constexpr int workPerRun = 3;

struct PowerLoss : Store {
    static void killAndStart() {
        powerOff();
        ASSERT_TRUE(storeOpen());
    }

    // One operation is over, whose state might have been the other one as well.
    void note(const LibraryState &other) {
        endOf.push_back(simulatedDisk.steps.size());
        states.push_back(libraryState());
        others.push_back(other);
    }
    void note() { note(libraryState()); }

    // An operation whose n-th step on the disk fails, once, a few times or for good; then the process is killed at
    // times, or must be. What it would have done is tried out ahead.
    void workInTrouble() {
        storeClose();
        ASSERT_TRUE(storeOpen());
        note();
        const SimulatedDisk unharmed = simulatedDisk;
        const bool severalFail = random() % 2 == 0, killed = severalFail || random() % 2 == 0;
        int failing = 1 + static_cast<int>(random() % 40);
        const bool atSync = random() % 2 == 0;
        const int several = random() % 2 == 0 ? 2 + static_cast<int>(random() % 3) : 1000000;
        const int count = severalFail ? several : 1;
        Random same = random;
        simulatedDisk.operations = simulatedDisk.lastSync = 0;
        workOnce(same);
        if (atSync) failing = simulatedDisk.lastSync;
        const LibraryState done = libraryState();
        powerOff();
        simulatedDisk = unharmed;
        simulatedDisk.openFiles.clear();
        ASSERT_TRUE(storeOpen());
        failDisk(failing, count);
        workOnce(random);
        simulatedDisk.failingFrom = 0;
        if (killed || !storeIsOpen() || storeIsDamaged()) killAndStart();
        const LibraryState found = libraryState();
        ASSERT_TRUE(found == done || isAfterStart(found, done) || isAfterStart(found, states.back()));
        note(done);
    }

    // A start of the program and some work, recorded. states[n] is what the library holds after n operations, of which
    // the start is the first; endOf[n] the step behind its last.
    void work(const DiskImage &image, const LibraryState &before) {
        diskLoad(image);
        states = others = {before};
        endOf = {0};
        ASSERT_TRUE(storeOpen());
        note();
        for (int done = 0; done < workPerRun; done++) {
            if (random() % 4 == 0) workInTrouble();
            workOnce(random);
            note();
            if (random() % 8 > 0) continue;
            killAndStart();
            note();
        }
        if (random() % 4 == 0) {
            storeClose();
            endOf.push_back(simulatedDisk.steps.size());
            states.push_back(states.back());
            others.push_back(states.back());
        }
        powerOff();
        std::swap(ended, simulatedDisk);
        uiRecord.lines.clear();  // refusals, which a choice by random meets
    }

    // Opens what a crash has left. With again set, the power goes once more while that is put right.
    void checkOpened(const DiskImage &image, std::size_t acknowledged, bool again) {
        diskLoad(image);
        tried++;
        ASSERT_TRUE(storeOpen());
        ASSERT_FALSE(storeIsDamaged());
        const LibraryState found = libraryState();
        bool expected = isAfterStart(found, states[acknowledged]);
        if (acknowledged + 1 < states.size())
            expected = expected || isAfterStart(found, states[acknowledged + 1]) ||
                       isAfterStart(found, others[acknowledged + 1]);
        ASSERT_TRUE(expected);
        if (random() % 2 == 0) storeClose();
        ASSERT_THAT(uiRecord.lines, IsEmpty());
        powerOff();
        if (!again) return;
        const std::size_t step = random() % (simulatedDisk.steps.size() + 1);
        const DiskImage second = diskAfterCrash(simulatedDisk, step, random);
        checkOpened(second, acknowledged, false);
    }

    void breakIn() {
        for (std::size_t step = 0; step <= ended.steps.size() && !HasFatalFailure(); step++) {
            SCOPED_TRACE("step " + std::to_string(step));
            const DiskImage crashed = diskAfterCrash(ended, step, random);
            const auto acknowledged = std::ranges::upper_bound(endOf, step) - endOf.begin() - 1;
            checkOpened(crashed, static_cast<std::size_t>(acknowledged), random() % 4 == 0);
        }
    }

    Random random{1};
    std::vector<LibraryState> states, others;
    std::vector<std::size_t> endOf;
    SimulatedDisk ended;
    int tried = 0;
};

TEST_F(PowerLoss, LeavesTheStateBeforeOrAfterAtEveryStep) {
    const int wanted = countFromEnvironment("NUMALINK_CRASH_STATES", 3000);
    for (std::uint32_t seed = 1; tried < wanted && !HasFatalFailure(); seed++) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        random.seed(seed);
        setGapLimits(seed % 2 == 0 ? GapLimits{} : GapLimits{.step = 700, .all = 3000});
        DiskImage image;
        LibraryState before;
        for (int run = 0; run < 12 && tried < wanted && !HasFatalFailure(); run++) {
            SCOPED_TRACE("run " + std::to_string(run));
            work(image, before);
            breakIn();
            // The next start finds what a power loss leaves, or all.
            image = random() % 2 == 0 ? diskAfterCrash(ended, ended.steps.size(), random) : ended.now;
            before = states.back();
        }
    }
    RecordProperty("states", tried);
    std::printf("crash states: %d\n", tried);
}

// The journal of a change that was taken back may tell of bytes that the end of the run cuts off.
TEST_F(PowerLoss, AtTheEndBehindAChangeThatWasTakenBackTellsOfNothing) {
    bool failed = true;
    for (int n = 1; failed && !HasFatalFailure(); n++) {
        SCOPED_TRACE(n);
        diskLoad({});
        ASSERT_TRUE(storeOpen());
        for (const char *name : {"A", "B"}) Store::add(name, kind::list, rootId, {1}, Bytes(1500, 2));
        ASSERT_TRUE(storeDelete(3));
        simulatedDisk.operations = 0;
        simulatedDisk.failingFrom = n;
        simulatedDisk.failingCount = 1;
        failed = Store::add("C", kind::list, rootId, {1}, Bytes(1200, 3)) == noItem;
        simulatedDisk.failingFrom = 0;
        const std::size_t done = simulatedDisk.steps.size();
        storeClose();
        std::swap(ended, simulatedDisk);
        uiRecord.lines.clear();
        for (std::size_t step = done; step <= ended.steps.size() && !HasFatalFailure(); step++) {
            for (int turn = 0; turn < 4; turn++) {
                diskLoad(diskAfterCrash(ended, step, random));
                ASSERT_TRUE(storeOpen() && storeItemExists("A", rootId));
                ASSERT_THAT(uiRecord.lines, IsEmpty());
                powerOff();
            }
        }
    }
}

struct GuardedChange {
    const char *what;
    bool (*change)();
    const char *copy;  // how a copy of what was there ahead of it may be called
};

// While the power goes at each step, and while each step fails.
TEST_F(PowerLoss, LeavesADamagedLibraryWholeWithItsCopy) {
    ASSERT_TRUE(storeOpen());
    for (const char *name : {"A", "B", "C"}) Store::add(name, kind::list, rootId, {1}, Bytes(700, 2));
    ASSERT_NE(storeTempFolder(), noItem);
    storeClose();
    DiskImage image = simulatedDisk.now;
    Bytes &damaged = image.files[image.names[libraryPath]];
    damaged[sizeof(MainHeader)] = 0;  // the signature of "A"
    const GuardedChange changes[] = {
        {"change", [] { return storeOpen() && storeRename(3, "new"); }, "/library/storage.dat.damaged-"},
        {"repair", [] { return checkLibrary(true).repaired; }, "/library/storage.dat.damaged-"},
        {"copy", [] { return storeOpen() && storeCopyTo("/library/copy"); }, "/library/copy"},
    };
    for (const auto &[what, change, copyName] : changes) {
        const std::string copyPath = copyName;
        SCOPED_TRACE(what);
        diskLoad(image);
        ASSERT_TRUE(change());
        powerOff();
        std::swap(ended, simulatedDisk);
        const Bytes result = libraryBytes(ended.now);
        const auto check = [&](DiskImage left, bool acknowledged, bool unread) {
            diskLoad(left);
            ASSERT_TRUE(storeOpen());
            powerOff();
            Bytes found = libraryBytes(simulatedDisk.now);
            if (found != damaged) found.resize(std::min(found.size(), result.size()));  // behind its end lies anything
            ASSERT_TRUE(found == result || (found == damaged && !acknowledged) || unread);
            const bool copied = std::ranges::any_of(left.names, [&](const auto &name) {
                return name.first.starts_with(copyPath) && bytesAt(left, name.first) == damaged;
            });
            ASSERT_TRUE(copied || (found == damaged && !acknowledged));
            ASSERT_TRUE(copied || !left.names.contains(copyPath)) << "a name for what isn't whole";
        };
        for (std::size_t step = 0; step <= ended.steps.size() && !HasFatalFailure(); step++)
            for (int turn = 0; turn < 8 && !HasFatalFailure(); turn++)
                check(diskAfterCrash(ended, step, random), step == ended.steps.size(), false);
        bool failed = true;
        for (int n = 1; failed && !HasFatalFailure(); n++) {
            diskLoad(image);
            simulatedDisk.failingFrom = n;
            simulatedDisk.failingCount = n % 2 == 0 ? 1 : 1000000;
            const bool done = change();
            failed = simulatedDisk.operations >= n;
            simulatedDisk.failingFrom = 0;
            powerOff();
            check(simulatedDisk.now, done, true);  // an item that can't be read counts as damaged
        }
    }
}

// Works until it is killed, and says so after each operation.
[[noreturn]] void workInChild(int pipe, std::uint32_t seed) {
    Random random(seed);
    if (!storeOpen()) _exit(1);
    for (;;) {
        if (write(pipe, "d", 1) != 1) _exit(1);
        workOnce(random);
    }
}

// Another start, which is killed before it can be over.
void killDuringStart(std::chrono::microseconds time) {
    const pid_t child = fork();
    if (child == 0) {
        storeOpen();
        for (;;) pause();
    }
    std::this_thread::sleep_for(time);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

// How many operations were acknowledged by a child that was killed after this time.
std::size_t acknowledgedByKilled(std::uint32_t seed, std::chrono::microseconds time) {
    int ends[2];
    if (pipe(ends) != 0) return 0;
    const pid_t child = fork();
    if (child == 0) workInChild(ends[1], seed);
    close(ends[1]);
    pollfd ready{ends[0], POLLIN, 0};
    poll(&ready, 1, -1);  // the start is over
    std::this_thread::sleep_for(time);
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    std::size_t count = 0;
    for (char told = 0; read(ends[0], &told, 1) == 1;) count++;
    close(ends[0]);
    return count;
}

// The same work on a disk in memory, from the library's file as it was: what it held after each operation.
std::vector<LibraryState> statesOf(const Bytes &library, std::uint32_t seed, std::size_t count) {
    setLibraryFolder("/library/");
    const SimulatedFiles disk;
    if (!library.empty()) diskFile("/library/storage.dat") = library;
    Random random(seed);
    std::vector<LibraryState> states;
    EXPECT_TRUE(storeOpen());
    for (std::size_t done = 0; done <= count; done++) {
        if (done > 0) workOnce(random);
        states.push_back(libraryState());
    }
    storeClose();
    uiRecord.boxes.clear();  // of refusals
    return states;
}

TEST(KilledProcess, LeavesWhatItHadAcknowledged) {
    const RecordedUi ui;
    const ScratchFolder folder;
    const int kills = countFromEnvironment("NUMALINK_KILLS", 8);
    Random random(7);
    int hot = 0;
    for (std::uint32_t number = 0; number < static_cast<std::uint32_t>(kills); number++) {
        SCOPED_TRACE(number);
        const std::string before = folder.read("storage.dat");
        const std::size_t acknowledged =
            acknowledgedByKilled(number, std::chrono::microseconds(random() % (number % 2 ? 3000 : 30000)));
        ASSERT_GT(acknowledged, 0U);
        const std::vector<LibraryState> states = statesOf({before.begin(), before.end()}, number, acknowledged);
        setLibraryFolder(folder.path);
        if (std::ranges::any_of(folder.read("storage.dat-journal").substr(0, 16), [](char code) { return code != 0; }))
            hot++;
        if (number % 2 == 0) killDuringStart(std::chrono::microseconds(random() % 2000));
        ASSERT_TRUE(storeOpen());
        ASSERT_FALSE(storeIsDamaged());
        const LibraryState found = libraryState();
        storeClose();
        ASSERT_TRUE(isAfterStart(found, states[acknowledged - 1]) || isAfterStart(found, states[acknowledged]));
        ASSERT_THAT(uiRecord.boxes, IsEmpty());
    }
    EXPECT_TRUE(hot > 0 || kills < 200);
    std::printf("kills: %d, with a journal in use: %d\n", kills, hot);
}

}  // namespace
}  // namespace numalink
