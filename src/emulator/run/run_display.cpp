// The display triangle with its two faces, and the end of the program.
#include "emulator/run/run_display.h"

#include "emulator/machine/cells.h"
#include "emulator/machine/pace.h"
#include "emulator/machine/run_waits.h"
#include "emulator/screens/display.h"
#include "emulator/screens/text_screen.h"

namespace numalink {

namespace {

constexpr Token plot{0xE0};
constexpr int rightKey = 27, upKey = 28, downKey = 37, leftKey = 38;
constexpr int variableX = 'X' - 'A', variableY = 'Y' - 'A';
constexpr std::uint64_t passMilliseconds = 50;
constexpr char marker[] = "\x99 Disp \x99";
constexpr char markerWiped[] = "        ";

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

}  // namespace

bool showAtTriangle(const RunState &state) {
    if (isToken(state.program[state.position - state.statementLength], plot)) return runGraphCursor(state);
    if (state.cellCount != 0) displayValue(state.statement[0], pixelColor::blue);
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
