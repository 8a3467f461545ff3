// The way back: walks through runs meet the states that were, and their record stays within its room.
#include <chrono>
#include <cmath>
#include <iostream>
#include <random>
#include <thread>

#include "debugger/breakpoints.h"
#include "debugger/debugged_runs.h"
#include "debugger/history.h"
#include "debugger/values.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/run/machine_start.h"

namespace numalink {

namespace {

// A walk of so many moves that goes on to the end then.
std::mt19937 randomMove;
int movesLeft = 0;
std::string walkFault;
std::size_t walksDone = 0, filesWalked = 0, statesCompared = 0, imagesMade = 0;
constexpr int walksOfAll = 3, movesOfWalk = 60, movesOfAll = 250,
              longestRun = 2000;  // statements that one move goes on by
std::uint64_t pauseAt = UINT64_MAX;

constexpr DebugTrace pausingTrace = {
    .statement =
        [](int, int) {
            if (machine.statementsRun < pauseAt) return;
            pauseAt = UINT64_MAX;
            debugPause();
        },
    .report = [](const char *) {},
    .screenMode = [](int) {},
};

void compareState(const DebugStop &stop) {
    const auto known = digests.find(stop.statement);
    if (stop.isWithin || known == digests.end()) return;
    statesCompared++;
    if (known->second != machineDigest() && walkFault.empty())
        walkFault = "differs ahead of statement " + std::to_string(stop.statement);
}

// A variable gets the value that it has, for which an image is taken here. Nothing that was recorded is lost by it.
bool makeImage(const DebugStop &stop) {
    const ComplexValue value = machine.variables[1];
    if (stop.statement != stop.newest || stop.isWithin || historyHasInput() || std::signbit(value.im)) return false;
    if (debugChange(*debugTargetNamed("B"), valueTextOf(value).plain) == DebugChange::done) imagesMade++;
    return false;
}

void move() {
    const DebugStop stop = debugStop();
    compareState(stop);
    pauseAt = UINT64_MAX;
    if (movesLeft-- <= 0) {
        debugStep(DebugStep::onward);
        return;
    }
    const std::uint64_t span = stop.newest - stop.oldest + 1;
    bool moved = false;
    switch (stop.isAtEnd ? 2 : randomMove() % 12) {
        case 0:
        case 1:
            moved = debugBack(DebugBack::statement);
            break;
        case 2:
        case 3:
            moved = debugGoTo(stop.oldest + randomMove() % span);
            break;
        case 4:
            moved = debugBack(DebugBack::change, std::string(1, static_cast<char>('A' + randomMove() % 3)));
            break;
        case 5:
            moved = debugStep(DebugStep::over);
            break;
        case 6:
            pauseAt = stop.newest + 1 + randomMove() % longestRun;
            moved = debugStep(DebugStep::onward);
            break;
        case 7:
        case 8:
            moved = makeImage(stop);
            break;
        default:
            break;
    }
    if (!moved) debugStep(DebugStep::statement);
}

}  // namespace

// An image of its own every 5 ms fills the room, however fast the build is: every second one goes then, so that all
// that ran stays within reach, and those that are left are right.
TEST_F(Debugged, AFullRecordKeepsAllWithinReach) {
    freshMachine(fileWith("1\\->A"));
    machineStart();
    MatrixSlot &matrix = machine.matrixSlots[0];
    matrixRenew(ownedByVariable, matrix, 250, 250);
    historyKeep(HistoryMode::full);
    constexpr std::uint64_t steps = 220, step = 256;
    std::size_t most = 0;
    for (std::uint64_t i = 0; i < steps; i++) {
        matrixFill(static_cast<double>(i * step), matrix);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        historyAt(i * step);
        most = std::max(most, historySize().bytes);
    }
    EXPECT_EQ(historyOldest(), 0u);
    EXPECT_LT(historySize().images, steps * 2 / 3);
    EXPECT_LE(most, historyBytes);
    EXPECT_GT(most, historyBytes * 3 / 4) << "it was full";
    for (std::uint64_t statement = 0; statement < steps * step; statement += 10 * step) {
        const std::size_t image = historyImageAt(statement);
        historyBringBack(image);
        EXPECT_EQ(matrixElements(matrix)[62499], static_cast<double>(historyStatementOf(image)));
    }
    historyAt(historyStatements + 2 * steps * step);
    EXPECT_GT(historyOldest(), 0u) << "of longer runs the first statements go";
    historyForget();
}

// A table that is made anew may come to lie elsewhere, with all else of the graphs as it was.
TEST_F(Debugged, EachImageHasItsOwnTables) {
    freshMachine(fileWith("1\\->A"));
    machineStart();
    const auto makeTables = [](double value) {
        for (MatrixSlot *table : {&graphs.tableResult, &graphs.recursionResult}) {
            matrixRenew(ownedByVariable, *table, 2, 2);
            matrixFill(value, *table);
        }
    };
    MatrixSlot &list = machine.listSlots[0][0];
    for (const bool isOfSequences : {false, true}) {
        MatrixSlot &result = isOfSequences ? graphs.recursionResult : graphs.tableResult;
        matrixRenew(ownedByVariable, list, 1, 3);
        makeTables(7);
        const MachineImage before = takeImage();
        const MatrixDescriptor *const placeBefore = result;
        matrixFree(list);
        list = nullptr;
        matrixRenew(ownedByVariable, result, 2, 2);
        matrixFill(7, result);
        const MachineImage after = takeImage();
        ASSERT_NE(result, placeBefore);
        bringBack(before);
        EXPECT_EQ(result, placeBefore);
        bringBack(after);
        EXPECT_EQ(matrixElements(result)[0], 7);
        EXPECT_NE(result, placeBefore);
        matrixFree(graphs.tableResult);
        matrixFree(graphs.recursionResult);
        graphs.tableResult = graphs.recursionResult = nullptr;
    }
    forgetImages();
}

// What comes from outside counts towards the room as it comes, also where no image is due.
TEST_F(Debugged, WhatCameFromOutsideStaysWithinTheRoom) {
    freshMachine(fileWith("1\\->A"));
    machineStart();
    runHalted = false;
    emulatorRunning = true;
    historyKeep(HistoryMode::full);
    std::size_t most = 0;
    for (std::uint64_t statement = 0, next = 0; statement < 20000; statement++) {
        if (statement >= next) next = historyAt(statement);
        historyLine([&] {
            return LineOutcome{.isGood = true, .head = {}, .data = Bytes(20000, static_cast<std::uint8_t>(statement))};
        });
        most = std::max(most, historySize().bytes);
    }
    emulatorRunning = false;
    EXPECT_LE(most, historyBytes + 256 * 20100);
    EXPECT_GT(historyOldest(), 10000u);
    historyForget();
}

// A search that would go through all of the record stops where it began, and the run goes on from there as ever; so
// does the way to a statement.
int waysGivenUp = 0;
std::uint64_t wayOrigin = 0;
std::string wayFault;
TEST_F(Debugged, AWayBackCanBeGivenUp) {
    waysGivenUp = 0;
    wayOrigin = 0;
    wayFault.clear();
    onStop = [] {
        const DebugStop stop = debugStop();
        if (stop.isAtEnd) return void(debugStep(DebugStep::onward));
        if (wayOrigin != 0) {
            const bool isThere = stop.reason == StopReason::pause && stop.statement == wayOrigin &&
                                 stop.newest == wayOrigin && machine.variables[0].re == 200000;
            if (!isThere) wayFault += " " + std::to_string(stop.statement);
            waysGivenUp++;
        }
        wayOrigin = stop.statement;
        if (waysGivenUp == 2) return void(debugStep(DebugStep::onward));
        EXPECT_TRUE(waysGivenUp == 0 ? debugBack(DebugBack::breakpoint) : debugGoTo(stop.oldest));
        debugPause();
    };
    Breakpoint point;
    point.program = "MAIN";
    point.line = 1;
    point.statement = 4;
    ASSERT_NE(breakpointAdd(point), 0);
    const DebugOptions options{.stopAtEnd = true, .records = true};
    const Ending ending = runWith(fileWith("\\Do:A+1\\->A:\\LpWhile A<200000:1\\->B:2\\->C:3\\->D"), &options);
    EXPECT_EQ(waysGivenUp, 2);
    EXPECT_EQ(wayFault, "");
    EXPECT_EQ(ending.ended, RunEnd::end);
    EXPECT_EQ(machine.variables[3].re, 3);
    EXPECT_EQ(debugWay().sort, DebugWay::Sort::none);
    breakpointsClear();
}

TEST_F(Debugged, WalksBackAndForthMeetTheSameStates) {
    onStop = move;
    const DebugOptions options{.stopAtEntry = true, .stopAtEnd = true, .records = true};
    if (takesAll()) digestLimit = 20000;
    walksDone = filesWalked = statesCompared = imagesMade = 0;
    withSomeFiles([&](const RunFile &file) {
        const Ending straight = runAndDigest(file);
        filesWalked++;
        for (int walk = takesAll() ? walksOfAll : 1; walk > 0; walk--, walksDone++) {
            movesLeft = takesAll() ? movesOfAll : movesOfWalk;
            walkFault.clear();
            debugTrace = &pausingTrace;
            EXPECT_EQ(runWith(file, &options), straight);
            debugTrace = nullptr;
            EXPECT_EQ(walkFault, "");
        }
    });
    std::cout << walksDone << " walks over " << filesWalked << " files, " << statesCompared << " states compared, "
              << imagesMade << " images made" << std::endl;
    EXPECT_GT(imagesMade, walksDone);
    if (!takesAll()) return;
    EXPECT_GE(walksDone, 1000u);
    EXPECT_GE(filesWalked, 50u);
}

// Each image has up to half a megabyte of its own. Where that fills the room, as in slow builds, images go so that the
// others are further apart. All of the run stays within reach, also its reports.
TEST_F(Debugged, ALongRecordOfLargeImagesStaysWithinItsRoom) {
    const RunFile file = fileWith(
        "{250,250}\\->\\Dim \\Mat A:\\For 1\\->K\\To 25000:\\Int (250\\Ran#)+1\\->I:\\Ran#\\->\\Mat "
        "A[I,I]:\\Ran#\\->\\Mat A[251-I,I]:1/:\\Next");
    static DebugRecord record;
    static std::vector<std::uint64_t> goals;
    goals = {0, 5000, 60000, 10000, 90000};
    digestEvery = 5000;
    const Ending straight = runAndDigest(file);
    digestEvery = 1;
    walkFault.clear();
    onStop = [] {
        const DebugStop stop = debugStop();
        if (stop.isAtEnd && stop.statement == stop.newest && record.bytes == 0) record = debugRecord();
        if (!stop.isWithin && digests[stop.statement] != machineDigest())
            walkFault += "differs ahead of statement " + std::to_string(stop.statement);
        const std::uint64_t goal = goals.empty() ? stop.newest : goals.back();
        if (!goals.empty()) goals.pop_back();
        if (goal == stop.newest || !debugGoTo(goal)) debugStep(DebugStep::onward);
    };
    const DebugOptions options{.stopAtEnd = true, .records = true};
    EXPECT_EQ(runWith(file, &options), straight);
    EXPECT_EQ(walkFault, "");
    EXPECT_TRUE(goals.empty());
    EXPECT_GT(record.statements, 100000u);
    EXPECT_LE(record.bytes, historyBytes);
}

}  // namespace numalink
