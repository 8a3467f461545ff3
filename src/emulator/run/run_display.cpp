// The display triangle with its two faces, and the end of the program.
#include "emulator/run/run_display.h"

#include <algorithm>
#include <cmath>

#include "emulator/machine/cells.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/display.h"
#include "emulator/screens/screen_number.h"
#include "emulator/screens/text_screen.h"

namespace numalink {

namespace {

constexpr Token plot{0xE0};
constexpr int rightKey = 27, upKey = 28, downKey = 37, leftKey = 38;
constexpr int variableX = 'X' - 'A', variableY = 'Y' - 'A';
constexpr std::uint64_t passMilliseconds = 50;
constexpr char marker[] = "\x99 Disp \x99";
constexpr char markerWiped[] = "        ";
// The fraction mark, parentheses, signs and those operators that make fractions of fractions.
constexpr std::uint8_t exactOperators[] = {0xBB, 0x28, 0x29, 0x87, 0x89, 0x99, 0xA9, 0xB9, 0x8B, 0x9B};

bool waitForExecute(RunEnd where) {
    keyCode = 0;
    for (;;) {
        const int key = waitPassKey(where);
        if (key == noKeyAnyMore || key == executeKey) return key == executeKey;
        refreshScreen(false);
        clearKey(key);
        waitPassSleep(passMilliseconds);
    }
}

void moveCursor(int key) {
    double &x = machine.variables[variableX].re;
    double &y = machine.variables[variableY].re;
    if (key == rightKey) x += 1;
    if (key == leftKey) x -= 1;
    if (key == upKey) y += 1;
    if (key == downKey) y -= 1;
}

bool runGraphCursor(const RunState &state) {
    machine.variables[variableX] = complexReal(state.statement[1].value.re);
    machine.variables[variableY] = complexReal(state.statement[3].value.re);
    setScreenMode(graphMode);
    keyCode = 0;
    for (;;) {
        const int key = waitPassKey(RunEnd::cursor);
        if (key == noKeyAnyMore || key == executeKey) return key == executeKey;
        moveCursor(key);
        refreshScreen(true);
        clearKey(key);
        waitPassPace(paceUnits::cursorPass);
    }
}

// On the row of the cursor, which stays.
void printMarker(std::string_view text) {
    if (machine.screenMode != textMode) return;
    printText(text, pixelColor::green, true);
    machine.textRow--;
}

// Whether the statement computes with fractions and whole numbers alone: its result is then shown as a fraction.
bool isOfFractions(const RunState &state) {
    bool hasMark = false;
    for (int i = state.position - state.statementLength; i < state.position; i++) {
        const ProgramCell &cell = state.program[i];
        const ComplexValue *variable = variableRef(cell);
        const double value = isNumber(cell) ? cell.value.re : variable != nullptr ? variable->re : 0;
        if (isToken(cell, token::fractionMark)) hasMark = true;
        const bool isOperator =
            cell.kind == CellKind::token && std::ranges::find(exactOperators, cell.token1) != std::end(exactOperators);
        if (std::trunc(value) != value || (!isNumber(cell) && variable == nullptr && !isOperator)) return false;
    }
    return hasMark;
}

// What a statement asks for by its own form: degrees, minutes and seconds, or a fraction. Empty for all else.
std::string textOfItsForm(const RunState &state) {
    const ProgramCell &cell = state.statement[0];
    if (!isNumber(cell) || machine.numberBase != decimalBase) return {};
    if (isToken(state.program[state.position - 1], token::toSexagesimal)) return sexagesimalText(cell.value.re);
    return machine.calculatorModes && isOfFractions(state) ? fractionText(cell.value.re) : std::string();
}

void showValue(const RunState &state) {
    const std::string text = textOfItsForm(state);
    text.empty() ? displayValue(state.statement[0], pixelColor::blue) : printText(text, pixelColor::blue, true);
}

}  // namespace

bool showAtTriangle(const RunState &state) {
    if (isToken(state.program[state.position - state.statementLength], plot)) return runGraphCursor(state);
    if (state.cellCount != 0) showValue(state);
    printMarker(marker);
    if (!waitForExecute(RunEnd::triangle)) return false;
    printMarker(markerWiped);
    return true;
}

bool showAtEnd(RunState &state) {
    if (machine.screenMode == textMode) {
        ProgramCell &cell = state.statement[0];
        if (isNumber(cell)) makeNumber(cell, {});
        displayValue(cell, pixelColor::blue);
    }
    refreshScreen(false);
    return waitForExecute(RunEnd::end);
}

}  // namespace numalink
