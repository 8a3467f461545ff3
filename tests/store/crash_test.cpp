// Power that goes at every step of every operation: what was acknowledged is there, and of the operation under way all
// or nothing. What a killed process leaves is among it, since each write reaches the system at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace numalink
