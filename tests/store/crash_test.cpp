// Power that goes at every step of every operation, and a process that is killed at any instant: what was acknowledged
// is there, and of the operation under way all or nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "store/store_worker.h"
#include "support/rounds.h"

namespace numalink {
namespace {

using ::testing::IsEmpty;

constexpr int workPerRun = 3;

struct PowerLoss : Store {
    static void powerOff() {
        simulatedDisk.dead = true;
        storeClose();
        simulatedDisk.dead = false;
    }

    // A start of the program and some work, recorded. states[n] is what the library holds after n operations, of which
    // the start is the first; endOf[n] the step behind its last.
    void work(const DiskImage &image, const LibraryState &before) {
        diskLoad(image);
        states = {before};
        endOf = {0};
        ASSERT_TRUE(storeOpen());
        for (int done = 0; done <= workPerRun; done++) {
            if (done > 0) workOnce(random);
            endOf.push_back(simulatedDisk.steps.size());
            states.push_back(libraryState());
        }
        if (random() % 4 == 0) {
            storeClose();
            endOf.push_back(simulatedDisk.steps.size());
            states.push_back(states.back());
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
        const bool after = acknowledged + 1 < states.size() && found == states[acknowledged + 1];
        ASSERT_TRUE(after || found == states[acknowledged]);
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
    std::vector<LibraryState> states;
    std::vector<std::size_t> endOf;
    SimulatedDisk ended;
    int tried = 0;
};

TEST_F(PowerLoss, LeavesTheStateBeforeOrAfterAtEveryStep) {
    const int wanted = countFromEnvironment("NUMALINK_CRASH_STATES", 400);
    for (std::uint32_t seed = 1; tried < wanted && !HasFatalFailure(); seed++) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        random.seed(seed);
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

// Works until it is killed, and says so after each operation.
[[noreturn]] void workInChild(int pipe, std::uint32_t seed) {
    Random random(seed);
    if (!storeOpen()) _exit(1);
    for (;;) {
        if (write(pipe, "d", 1) != 1) _exit(1);
        workOnce(random);
    }
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
        ASSERT_TRUE(storeOpen());
        ASSERT_FALSE(storeIsDamaged());
        const LibraryState found = libraryState();
        storeClose();
        ASSERT_TRUE(found == states[acknowledged - 1] || found == states[acknowledged]);
        ASSERT_THAT(uiRecord.boxes, IsEmpty());
    }
    std::printf("kills: %d, with a journal in use: %d\n", kills, hot);
}

}  // namespace
}  // namespace numalink
