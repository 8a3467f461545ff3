// The statements that write on a screen or keep what stands on one. A wrong shape reports and draws with what the
// cells hold.
#include "emulator/machine/errors.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/machine/named_values.h"
#include "emulator/screens/display.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/pictures.h"
#include "emulator/screens/text_screen.h"
#include "emulator/statements/statement_rows.h"

namespace numalink {

namespace {

constexpr char pairOfNumbers[] = "n,n";
constexpr int pairCount = 4;
constexpr char placeAndValue[] = "n,n,v";

WayOut drawn(RunState &state) {
    setScreenMode(graphMode);
    return handled(state);
}

void readPair(RunState &state) {
    evaluateAll(state);
    expectShape(state, pairCount, pairOfNumbers);
}

// A literal number in cell 1, as it stands in the program.
double rawNumber(RunState &state) {
    expectShape(state, 2, "n");
    return numberAt(state, 1);
}

void plotOff(double x, double y, PixelColor) { plotPoint(x, y, pixelColor::background); }
void plotChange(double x, double y, PixelColor color) { pixelChange(mapX(x), mapY(y), color); }
void pixelOffAt(double x, double y, PixelColor) { pixelOff(x, y); }

// The statements that draw at one place.
struct PlaceRow {
    Token token;
    void (*draw)(double x, double y, PixelColor color) = nullptr;
};
constexpr PlaceRow placeRows[] = {
    {{0xE0}, plotPoint},     {{0xF7, 0xA8}, plotPoint},  {{0xF7, 0xA9}, plotOff},     {{0xF7, 0xAA}, plotChange},
    {{0xF7, 0xAB}, pixelOn}, {{0xF7, 0xAC}, pixelOffAt}, {{0xF7, 0xAD}, pixelChange},
};

ViewWindow *windowMemory(double number) {
    const int index = cutToInteger(number - 1);
    return index >= 0 && index < memoryCount ? &machine.windowMemories[static_cast<std::size_t>(index)] : nullptr;
}

}  // namespace

WayOut runViewWindow(RunState &state) {
    evaluateRest(state);
    for (int k = 1; k <= windowValueCount && state.cellCount >= 2 * k; k++)
        machine.window[static_cast<std::size_t>(k - 1)] = state.statement[2 * k - 1].value;
    for (int k = 1; k <= windowValueCount && state.cellCount >= 2 * (k + windowValueCount); k++)
        namedValue(rightWindow[static_cast<std::size_t>(k - 1)]) =
            state.statement[2 * (k + windowValueCount) - 1].value;
    clearGraph();
    return handled(state);
}

WayOut runColor(RunState &state) {
    constexpr PixelColor colors[] = {pixelColor::orange, pixelColor::blue, pixelColor::green};
    state.color = state.sketchColor = colors[state.statement[0].token2 - 0x34];
    return takePrefix(state);
}

WayOut runCls(RunState &state) {
    expectAlone(state);
    clearScreen();
    return handled(state);
}

WayOut runPlace(RunState &state) {
    const ProgramCell command = state.statement[0];
    readPair(state);
    for (const PlaceRow &row : placeRows) {
        if (isToken(command, row.token)) row.draw(numberAt(state, 1), numberAt(state, 3), state.sketchColor);
    }
    return drawn(state);
}

WayOut runLine(RunState &state) {
    expectAlone(state);
    drawLastLine(state.sketchColor);
    return drawn(state);
}

WayOut runString(RunState &state) {
    if (storesFormula(state) || storesSequence(state)) return handled(state);
    displayValue(state.statement[0], state.color);
    return takePrefix(state);
}

WayOut runLocate(RunState &state) {
    evaluateAll(state);
    expectShape(state, anyCount, placeAndValue);
    putText(cutToInteger(numberAt(state, 1)), cutToInteger(numberAt(state, 3)), valueText(state.statement[5]),
            state.color);
    return handled(state);
}

WayOut runClearText(RunState &state) {
    clearText();
    return takePrefix(state);
}

WayOut runClearGraph(RunState &state) {
    clearGraph();
    return takePrefix(state);
}

WayOut runNoBackground(RunState &state) {
    expectAlone(state);
    machine.backgroundPicture = 0;
    clearGraph();
    return handled(state);
}

// A number without a picture lies under nothing.
WayOut runBackground(RunState &state) {
    const int number = cutToInteger(rawNumber(state));
    machine.backgroundPicture = pictureMemory(number) != nullptr ? number : 0;
    clearGraph();
    return handled(state);
}

WayOut runStorePicture(RunState &state) {
    storePicture(cutToInteger(rawNumber(state)));
    return handled(state);
}

WayOut runRecallPicture(RunState &state) {
    recallPicture(cutToInteger(rawNumber(state)));
    return handled(state);
}

WayOut runStoreWindow(RunState &state) {
    if (ViewWindow *memory = windowMemory(rawNumber(state))) *memory = machine.window;
    return handled(state);
}

WayOut runRecallWindow(RunState &state) {
    if (const ViewWindow *memory = windowMemory(rawNumber(state))) machine.window = *memory;
    clearGraph();
    return drawn(state);
}

WayOut runVertical(RunState &state) {
    evaluateAll(state);
    expectShape(state, 2, "n");
    drawVertical(numberAt(state, 1), state.sketchColor);
    return drawn(state);
}

WayOut runHorizontal(RunState &state) {
    evaluateAll(state);
    expectShape(state, 2, "n");
    drawHorizontal(numberAt(state, 1), state.sketchColor);
    return drawn(state);
}

WayOut runText(RunState &state) {
    evaluateAll(state);
    expectShape(state, anyCount, placeAndValue);
    graphText(numberAt(state, 1), numberAt(state, 3), valueText(state.statement[5]), state.color);
    return drawn(state);
}

WayOut runCircle(RunState &state) {
    evaluateAll(state);
    expectShape(state, 6, "n,n,n");
    drawCircle(numberAt(state, 1), numberAt(state, 3), numberAt(state, 5), state.sketchColor);
    return drawn(state);
}

WayOut runFLine(RunState &state) {
    evaluateAll(state);
    expectShape(state, 8, "n,n,n,n");
    drawLine(numberAt(state, 1), numberAt(state, 3), numberAt(state, 5), numberAt(state, 7), state.sketchColor);
    return drawn(state);
}

WayOut runPixelTest(RunState &state) {
    readPair(state);
    machine.ans = complexReal(pixelTest(numberAt(state, 1), numberAt(state, 3)) ? 1 : 0);
    return handled(state);
}

}  // namespace numalink
