// The emulated calculator's memory: the pool and its table, slots, reports, the reset, and numbers as text.
#include "emulator/machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "emulator/arrays.h"
#include "emulator/complex_math.h"
#include "emulator/errors.h"
#include "emulator/expressions.h"
#include "emulator/pace.h"
#include "emulator/screen_number.h"
#include "platform/clock.h"
#include "settings/settings_store.h"
#include "support/ui_recorder.h"

namespace numalink {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST(Pool, CountsColumnsFirstAndRefusesPlacesOutside) {
    const FreshMachine fresh;
    setMatrix('A', 3, {1, 2, 3, 4, 5, 6});
    MatrixDescriptor *matrix = machine.matrixSlots[0];
    EXPECT_EQ(matrixElement(matrix, 2, 0), 3);
    EXPECT_EQ(matrixElement(matrix, 0, 1), 4);
    EXPECT_THAT(fresh.reports, IsEmpty());
    for (const auto &[col, row] : {std::pair{3, 0}, {0, 2}, {-1, 0}, {0, -1}}) matrixElement(matrix, col, row) = 99;
    matrixElement(nullptr, 0, 0) = 99;
    EXPECT_EQ(fresh.reports.size(), 5u);
    EXPECT_EQ(fresh.reports[0].text, "Arg  ERROR");
    EXPECT_EQ(fresh.reports[4].text, "Dim ERROR");
    EXPECT_TRUE(machine.errorFlag);
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\Mat A")), "[1,2,3][4,5,6] !Dim !Arg") << "nothing stored anywhere";
    EXPECT_EQ(matrixElement(nullptr, 0, 0), 0);
}

TEST(Pool, TellsOnceThatItIsFullAndHandsOutAnEmptyArray) {
    const RecordedUi ui;
    const FreshMachine fresh;
    EXPECT_EQ(matrixSize(matrixAllocate(ownedByVariable, 256, 256)), poolCellLimit);
    EXPECT_THAT(uiRecord.lines, IsEmpty());
    MatrixDescriptor *empty = matrixAllocate(ownedTemporarily, 1, 1);
    EXPECT_EQ(matrixSize(empty), 0);
    EXPECT_TRUE(machine.exhausted);
    matrixFill(1, empty);
    matrixFree(empty);
    setMatrix('A', 1, {});
    matrixAssign(ownedByVariable, machine.matrixSlots[1], empty);
    EXPECT_EQ(matrixSize(matrixAllocate(ownedTemporarily, 2147483647, 2147483647)), 0);
    EXPECT_THAT(uiRecord.lines, ElementsAre("box 55 / 2"));

    machineStart();
    EXPECT_FALSE(machine.exhausted);
    for (int i = 0; i < matrixRowLimit; i++) matrixAllocate(ownedByVariable, 1, 1);
    EXPECT_FALSE(machine.exhausted);
    EXPECT_EQ(matrixSize(matrixAllocate(ownedByVariable, -1, 5)), 0);
    EXPECT_THAT(uiRecord.lines, ElementsAre("box 55 / 2", "box 54 / 2"));
}

// Reading an element makes no copy, but counts as one.
TEST(Pool, GivesOutAtTheSamePlaceWhetherCopiesAreMadeOrBorrowed) {
    const RecordedUi ui;
    const FreshMachine fresh;
    matrixRenew(ownedByVariable, machine.matrixSlots[0], 128, 170);  // a third of the pool
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\Mat A[1,1]+\\Mat A[1,2]")), "0");
    EXPECT_FALSE(machine.exhausted);
    freeTemporaries();
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\Mat A[1,1]+\\Mat A[1,2]+\\Mat A[1,3]")), "0 !Arg");
    EXPECT_TRUE(machine.exhausted);
    EXPECT_THAT(uiRecord.lines, ElementsAre("box 55 / 2"));
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

// The calculators' own minus, plus and exponent mark, written with plain characters.
std::string plainNumberText(double value) {
    std::string text = numberText(value);
    for (char &c : text) c = c == '\x87' ? '-' : c == '\x89' ? '+' : c == '\xDF' ? 'E' : c == '-' ? '?' : c;
    return text;
}

TEST(NumberText, HasTenDigitsInTheCalculatorsCharacters) {
    const double infinite = std::numeric_limits<double>::infinity(), no = std::numeric_limits<double>::quiet_NaN();
    const std::pair<double, const char *> cases[] = {{0.5, "0.5"},
                                                     {0.05, "5.E-2"},
                                                     {-0.0123, "-1.23E-2"},
                                                     {9999999999, "9999999999"},
                                                     {1e10, "1.E+10"},
                                                     {9999999999.5, "1.E+10"},
                                                     {0.09999999999999, "0.1"},
                                                     {12345678.906, "12345678.91"},
                                                     {-2.5e-300, "-2.5E-300"},
                                                     {1e100, "1.E+100"},
                                                     {-infinite, "-Inf"},
                                                     {no, "NaN"}};
    for (const auto &[value, text] : cases) EXPECT_EQ(plainNumberText(value), text) << value;
}

TEST(Numbers, AreCutAndWrappedWithoutHarm) {
    const double infinite = std::numeric_limits<double>::infinity(),
                 noNumber = std::numeric_limits<double>::quiet_NaN();
    const std::pair<double, int> wrapped[] = {{2.9, 2},           {-2.9, -2},      {2147483648, -2147483647 - 1},
                                              {-3e9, 1294967296}, {4294967301, 5}, {1e300, 0},
                                              {infinite, 0},      {noNumber, 0}};
    for (const auto &[value, expected] : wrapped) EXPECT_EQ(wrappedInteger(value), expected) << value;
    EXPECT_EQ(cutToInteger(-3.9), -3);
    EXPECT_GT(cutToInteger(4294967297), 65536) << "must not come round to 1";
    for (const double value : {-1e300, -infinite, noNumber}) EXPECT_LT(cutToInteger(value) - 1, -65536);
    EXPECT_GT(cutToInteger(infinite), 65536);
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
