// The emulated calculator's memory, whose limits and reports are those of the runs: the pool, the reset, and items of
// the folder, hostile ones too. Its pace and its keys.
#include "emulator/machine/machine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include "calculator/number_text.h"
#include "emulator/expressions.h"
#include "emulator/expressions/complex_math.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/keypad.h"
#include "emulator/machine/pace.h"
#include "emulator/run/machine_start.h"
#include "emulator/run/run_loading.h"
#include "emulator/screens/pictures.h"
#include "platform/clock.h"
#include "settings/settings_store.h"
#include "support/ui_recorder.h"

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
    matrixRenew(ownedByVariable, machine.listSlots[0][2], 1, 1);
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
    for (const int factor : {2, 5, 10}) {
        paceFactor = factor;
        const std::uint64_t from = now;
        for (int i = 0; i < 1000; i++) pace(paceUnits::statement);
        EXPECT_NEAR(static_cast<double>(now - from), 1500.0 / factor, 2) << "what is cut isn't lost";
    }
    paceFactor = 1;
    slept = 51;
    fullSpeed = true;
    pace(paceUnits::straightLine);
    pace(paceUnits::straightLine);
    EXPECT_EQ(slept, 51u);
    clockPort = before;
}

Bytes matrixHead(std::uint32_t rows, std::uint32_t columns, char letter) {
    Bytes head(50);
    writeBig16(head, 7, rows);
    writeBig16(head, 9, columns);
    head[15] = static_cast<std::uint8_t>(letter);
    return head;
}

void addRecord(Bytes &data, std::uint32_t row, std::uint32_t column, double value) {
    std::array<std::uint8_t, valueFrameSize> record{};
    encodeValue(record, row, column, value);
    data.insert(data.end(), record.begin(), record.end());
}

Bytes pictureHead(std::uint32_t width, std::uint32_t height, std::uint32_t planes, char digit) {
    Bytes head(50);
    writeBig16(head, 7, height);
    writeBig16(head, 9, width);
    head[18] = static_cast<std::uint8_t>(digit);
    writeBig16(head, 32, planes);
    writeBig16(head, 34, 1);
    return head;
}

struct Loading : testing::Test {
    Loading() {
        poolReset();
        machine.matrixSlots.fill(nullptr);
        machine.errorFlag = false;
    }
    RecordedUi ui;
};

TEST_F(Loading, AMatrixTakesItsElementsByRowAndColumn) {
    Bytes data;
    addRecord(data, 1, 2, 5);
    addRecord(data, 2, 1, -7);
    addRecord(data, 9, 1, 8);  // outside: skipped
    loadMatrixItem(matrixHead(2, 2, 'C'), data);
    ASSERT_NE(machine.matrixSlots[2], nullptr);
    const double *elements = matrixElements(machine.matrixSlots[2]);
    EXPECT_EQ(std::vector<double>(elements, elements + 4), (std::vector<double>{0, 5, -7, 0}));
    EXPECT_FALSE(machine.errorFlag);
}

TEST_F(Loading, ItemsThatNameNoSlotOrNoSizeArePassedOverAndOneBeyondThePoolIsTold) {
    loadMatrixItem(matrixHead(2, 2, '['), {});
    loadMatrixItem(matrixHead(0, 2, 'A'), {});
    loadMatrixItem(Bytes(15), {});
    loadPictureItem(pictureHead(128, 64, 1, '7'), Bytes(2000, 0xFF));
    loadPictureItem(Bytes(18, '1'), Bytes(2000, 0xFF));
    EXPECT_TRUE(uiRecord.boxes.empty());
    loadMatrixItem(matrixHead(65535, 65535, 'A'), Bytes(64));
    EXPECT_EQ(uiRecord.lines, std::vector<std::string>{"box 55 / 2"});
    EXPECT_FALSE(machine.exhausted);
    EXPECT_EQ(poolCellsUsed(), 0);
    EXPECT_EQ(machine.matrixSlots[0], nullptr);
}

// One plane of 128 by 64, green; its first byte is the bottom of the strip at the right edge.
TEST_F(Loading, APictureIsDrawnIntoItsMemory) {
    Bytes data(128 * 64 / 8 + 6);
    data[4] = 3;
    data[5] = 0x01;
    data[5 + 64] = 0x80;
    loadPictureItem(pictureHead(128, 64, 1, '6'), data);
    EXPECT_EQ(dotAt(*pictureMemory(6), 127, 63), lcdColor::green);
    EXPECT_EQ(dotAt(*pictureMemory(6), 112, 63), lcdColor::green);
    EXPECT_EQ(std::count(pictureMemory(6)->dots.begin(), pictureMemory(6)->dots.end(), lcdColor::green), 2);
}

TEST_F(Loading, APictureOfAnySizeIsClipped) {
    loadPictureItem(pictureHead(65535, 65535, 65535, '1'), Bytes(5000, 0x01));
    loadPictureItem(pictureHead(8, 0, 1, '1'), Bytes(50, 0xFF));
    loadPictureItem(pictureHead(3, 1, 1, '1'), Bytes(4, 0xFF));
    EXPECT_EQ(pictureMemory(1)->width, displayWidth);
}

TEST(Keypad, NoTwoKeysOverlapAndAllLieOnTheSurface) {
    EXPECT_EQ(keyFaces().size(), 50u);
    for (const KeyFace &face : keyFaces()) {
        const KeySize size = keySize(face.shape);
        EXPECT_EQ(keyHit(face.x + size.width / 2, face.y + size.height / 2), face.code);
        EXPECT_LE(face.x + size.width, keypadWidth);
        EXPECT_EQ(keyFaceOf(face.code), &face);
        EXPECT_STRNE(face.legend, "");
    }
    EXPECT_EQ(keyFaceOf(99), nullptr);
}

TEST(Keypad, TheKeyboardFollowsTheLettersOfTheKeys) {
    for (const auto &[key, code] : {std::pair(KeyboardKey::enter, 31),
                                    {KeyboardKey::digit5, 63},
                                    {KeyboardKey::comma, 35},
                                    {KeyboardKey::erase, 44},
                                    {KeyboardKey::f6, 29},
                                    {KeyboardKey::down, 37}})
        EXPECT_EQ(keyCodeOf(key), code);
    for (int letter = 0; letter < 26; letter++) {
        const int code = keyCodeOf(static_cast<KeyboardKey>(static_cast<int>(KeyboardKey::a) + letter));
        ASSERT_NE(keyFaceOf(code), nullptr);
        EXPECT_EQ(std::string(keyFaceOf(code)->alpha), std::string(1, static_cast<char>('A' + letter)));
    }
    for (int key = 0; key < static_cast<int>(KeyboardKey::count); key++) {
        EXPECT_NE(keyFaceOf(keyCodeOf(static_cast<KeyboardKey>(key))), nullptr);
        EXPECT_NE(keyCodeOf(static_cast<KeyboardKey>(key)), stopKey);
    }
}

}  // namespace
}  // namespace numalink
