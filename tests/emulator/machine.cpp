// The emulated calculator's memory: the pool, the reset and the pace. Its limits and reports are those of the runs.
#include "emulator/machine.h"

#include <gtest/gtest.h>

#include <random>

#include "emulator/arrays.h"
#include "emulator/complex_math.h"
#include "emulator/expressions.h"
#include "emulator/pace.h"
#include "platform/clock.h"
#include "settings/settings_store.h"

namespace numalink {
namespace {

TEST(Pool, KeepsEveryArrayWhateverIsFreed) {
    const FreshMachine fresh;
    std::mt19937 random(7);
    std::vector<std::pair<MatrixDescriptor *, double>> arrays;
    int cells = 0;
    for (int round = 0; round < 4000; round++) {
        if (arrays.size() < 150 && random() % 2 == 0) {
            const int cols = static_cast<int>(random() % 5), rows = static_cast<int>(random() % 7);
            arrays.emplace_back(matrixAllocate(random() % 2 + 1, cols, rows), round);
            for (int i = 0; i < cols * rows; i++) ASSERT_EQ(matrixElements(arrays.back().first)[i], 0.0);
            matrixFill(round, arrays.back().first);
            cells += cols * rows;
        } else if (!arrays.empty()) {
            const std::size_t gone = random() % arrays.size();
            cells -= matrixSize(arrays[gone].first);
            matrixFree(arrays[gone].first);
            arrays.erase(arrays.begin() + static_cast<std::ptrdiff_t>(gone));
        }
        ASSERT_EQ(poolCellsUsed(), cells);
        for (const auto &[array, value] : arrays)
            for (int i = 0; i < matrixSize(array); i++) ASSERT_EQ(matrixElements(array)[i], value);
    }
    freeTemporaries();
    EXPECT_EQ(matrixRowsOwned(ownedTemporarily), 0);
    EXPECT_GT(matrixRowsOwned(ownedByVariable), 0);
}

TEST(Machine, StartsAnewButKeepsWhatOutlivesARun) {
    const FreshMachine fresh;
    machine.ans = complexReal(3);
    machine.window[xMax] = complexReal(6);
    machine.windowMemories[5][yMin] = complexReal(7);
    machine.plotCurrent = {1, 2};
    machine.variables[variableTheta] = complexReal(4);
    machine.currentFile = 5;
    machine.backgroundPicture = 2;
    machine.gridSwitch = machine.graphSwitches[5] = machine.errorFlag = true;
    machine.rowColor[7] = pixelColor::orange;
    keyCode = 31;
    setList(3, {1});
    ASSERT_TRUE(settingsSetInt(setting::fillListsMatrices, 1));
    machineStart();
    EXPECT_EQ(matrixRowsOwned(ownedByVariable), 63);
    EXPECT_EQ(poolCellsUsed(), 25380);
    EXPECT_EQ(machine.matrixSlots[matrixAnsSlot]->cols, 30);
    EXPECT_EQ(machine.listSlots[5][5]->rows, 30);
    EXPECT_EQ(machine.listSlots[0][6], nullptr);
    EXPECT_EQ(machine.matrixSlots[matrixDisplaySlot], nullptr);
    ASSERT_TRUE(settingsSetInt(setting::fillListsMatrices, 0));
    machineStart();
    EXPECT_EQ(machine.listSlots[0][2], nullptr);
    EXPECT_EQ(poolCellsUsed(), 0);

    EXPECT_EQ(machine.ans.re + machine.window[xMax].re + machine.windowMemories[5][yMin].re, 16);
    EXPECT_EQ(machine.plotCurrent.y, 2);
    EXPECT_EQ(machine.variables[variableTheta].re, 0);
    EXPECT_FALSE(machine.errorFlag || machine.gridSwitch || machine.graphSwitches[5]);
    EXPECT_EQ(machine.currentFile + machine.backgroundPicture + keyCode, 0);
    EXPECT_EQ(machine.screenMode, textMode);
    EXPECT_EQ(machine.rowColor[7], pixelColor::blue);
}

std::uint64_t now = 0, slept = 0;

TEST(Pace, PaysForTheCallBefore) {
    const ClockPort before = clockPort;
    clockPort.tickCount = [] { return now; };
    clockPort.sleepMilliseconds = [](std::uint64_t time) {
        slept += time;
        now += time;
    };
    now = 1000;
    fullSpeed = false;
    pace(paceUnits::straightLine);
    EXPECT_EQ(slept, 0u);
    pace(paceUnits::inputPass);
    EXPECT_EQ(slept, 45u);
    now += 10;
    pace(paceUnits::statement);
    EXPECT_EQ(slept, 50u);
    pace(paceUnits::lineDot);
    pace(paceUnits::lineDot);
    EXPECT_EQ(slept, 51u);
    fullSpeed = true;
    pace(paceUnits::straightLine);
    pace(paceUnits::straightLine);
    EXPECT_EQ(slept, 51u);
    clockPort = before;
}

}  // namespace
}  // namespace numalink
