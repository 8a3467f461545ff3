// The screen mode, values as text, and the display that the window copies from.
#include "emulator/screens/display.h"

#include <algorithm>
#include <array>

#include "calculator/charset.h"
#include "drawing/matrix_picture.h"
#include "emulator/machine/arrays.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/screen_number.h"
#include "emulator/screens/text_screen.h"
#include "platform/lock.h"
#include "telling/user_interface.h"
#include "text/token_table.h"

namespace numalink {

namespace {

constexpr std::size_t valueTextLimit = 499;  // characters of a value's text
constexpr int shortCopyRows = 56;            // dots: all text rows but the last
constexpr int variableX = 'X' - 'A', variableY = 'Y' - 'A';

Surface matrixSurface(displayWidth, displayHeight);
std::uint64_t matrixChanges = 0;

Lock displayLock;
Surface display GUARDED_BY(displayLock)(displayWidth, displayHeight);
std::array<std::string, textRowCount> displayRows GUARDED_BY(displayLock);  // empty for what is no text
std::uint64_t displayChanges GUARDED_BY(displayLock) = 1;

std::atomic<bool> displayHeld = false;

void keepRow(int row) REQUIRES_LOCK(displayLock) {
    displayRows[static_cast<std::size_t>(row - 1)] = machine.screenMode == textMode ? textRowCodes(row) : std::string();
}

// All that the display depends on: the same again leaves it as it is.
struct DisplayState {
    int mode = 0;
    bool shortCopy = false;
    std::uint64_t sourceChanges = 0;
    bool hasCross = false;
    int crossX = 0, crossY = 0;
    friend bool operator==(const DisplayState &, const DisplayState &) = default;
};
DisplayState shown;  // run thread

const Surface &sourceOf(int mode) {
    return mode == graphMode ? graphScreen() : mode == matrixMode ? matrixSurface : textScreen();
}

std::uint64_t changesOf(int mode) {
    return mode == graphMode ? graphScreenChanges() : mode == matrixMode ? matrixChanges : textScreenChanges();
}

void drawCross(Surface &surface, int x, int y) {
    if (x < -2 || x > displayWidth + 1 || y < -2 || y > displayHeight + 1) return;
    for (const int distance : {1, 2}) {
        putDot(surface, x - distance, y, lcdColor::orange);
        putDot(surface, x + distance, y, lcdColor::orange);
        putDot(surface, x, y - distance, lcdColor::orange);
        putDot(surface, x, y + distance, lcdColor::orange);
    }
}

std::string stringText(const ProgramCell &cell) {
    std::string text;
    for (int i = 0; i < cell.stringLength && text.size() < valueTextLimit; i++) {
        const std::uint8_t bytes[] = {cell.stringCells[i].token1, cell.stringCells[i].token2};
        std::string_view tokenText;
        tokenToText(ByteView(bytes, isTwoByteLead(bytes[0]) ? 2 : 1), tokenText);
        text += tokenText;
    }
    return text.substr(0, valueTextLimit);
}

std::string rowsOnDisplay(bool blankOnes) {
    const HoldLock held(displayLock);
    std::string text;
    for (const std::string &row : displayRows) {
        const std::size_t last = row.find_last_not_of(' ');
        const bool isBlank = last == std::string::npos;
        if (!isBlank || blankOnes) text += utf8FromCalculator(row.substr(0, isBlank ? 0 : last + 1)) + "\n";
    }
    return text;
}

bool isBlankString(const ProgramCell &cell) {
    return cell.kind == CellKind::string && cell.stringLength == 1 && isToken(cell.stringCells[0], token::blank);
}

void showMatrix(const ProgramCell &cell) {
    MatrixSlot &slot = machine.matrixSlots[matrixDisplaySlot];
    matrixAssign(ownedTemporarily, slot, cell.matrix);
    drawMatrix(matrixSurface, {.columns = slot->cols,
                               .rows = slot->rows,
                               .values = {matrixElements(slot), static_cast<std::size_t>(matrixSize(slot))}});
    matrixChanges++;
    setScreenMode(matrixMode);
}

}  // namespace

std::string valueText(const ProgramCell &cell) {
    if (isNumber(cell) && machine.numberBase != decimalBase) return baseText(cell.value.re, machine.numberBase);
    if (isNumber(cell)) return numberText(cell.value.re, machine.format);
    return cell.kind == CellKind::string ? stringText(cell) : std::string();
}

void displayValue(const ProgramCell &cell, PixelColor color) {
    if (isBlankString(cell)) {
        machine.rowColor[static_cast<std::size_t>(machine.textRow - 1)] = color;
        printText("", color, false);
    } else if (cell.kind == CellKind::matrix) {
        showMatrix(cell);
    } else {
        printText(valueText(cell), color, isNumber(cell));
    }
}

const Surface &matrixScreen() { return matrixSurface; }

bool dotIsSet(int x, int y) {
    const bool isOfGraph = machine.screenMode == textMode && machine.shortCopy && y >= shortCopyRows;
    return dotAt(isOfGraph ? graphScreen() : sourceOf(machine.screenMode), x, y) != lcdColor::background;
}

void displayRestore(const Surface &ofMatrices, const Surface &onDisplay) {
    matrixSurface = ofMatrices;
    matrixChanges++;
    shown = {};
    const HoldLock held(displayLock);
    display = onDisplay;
    for (int row = 1; row <= textRowCount; row++) keepRow(row);
    displayChanges++;
}

void holdDisplay(bool on) {
    if (displayHeld.exchange(on) && !on) userInterface.displayChanged();
}

void refreshScreen(bool showCross) {
    const int mode = machine.screenMode;
    DisplayState wanted{.mode = mode, .shortCopy = machine.shortCopy, .sourceChanges = changesOf(mode)};
    if (showCross) {
        wanted.hasCross = true;
        wanted.crossX = cutToInteger(mapX(machine.variables[variableX].re));
        wanted.crossY = cutToInteger(mapY(machine.variables[variableY].re));
    }
    if (wanted == shown) return;
    shown = wanted;
    {
        const HoldLock held(displayLock);
        const Surface &source = sourceOf(mode);
        const int rows = mode == textMode && wanted.shortCopy ? shortCopyRows : displayHeight;
        std::copy_n(source.dots.begin(), rows * displayWidth, display.dots.begin());
        for (int row = 1; row <= textRowCount; row++) keepRow(row);
        if (wanted.hasCross) drawCross(display, wanted.crossX, wanted.crossY);
        displayChanges++;
    }
    if (!displayHeld) userInterface.displayChanged();
}

bool displayCopy(Surface &target, std::uint64_t &seen) {
    const HoldLock held(displayLock);
    if (seen == displayChanges || displayHeld) return false;
    target = display;
    seen = displayChanges;
    return true;
}

std::string displayText() { return rowsOnDisplay(false); }
std::string displayLines() { return rowsOnDisplay(true); }

Surface displayNow() {
    const HoldLock held(displayLock);
    return display;
}

}  // namespace numalink
