// The one machine of the process and its reset at the start of a run.
#include "emulator/machine/machine.h"

#include <cmath>

#include "emulator/expressions/operators.h"
#include "emulator/machine/arrays.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/text_screen.h"
#include "settings/settings_store.h"

namespace numalink {

EmulatorMachine machine;
std::atomic<int> keyCode = 0;
std::atomic<bool> emulatorRunning = false;

namespace {

void emptySlots() {
    machine.matrixSlots.fill(nullptr);
    for (auto &file : machine.listSlots) file.fill(nullptr);
}

// Matrices A to Z and Ans of 30 by 30, lists 1 to 6 of each file of 30 elements.
void fillSlots() {
    for (int i = 0; i <= matrixAnsSlot; i++)
        machine.matrixSlots[static_cast<std::size_t>(i)] = matrixAllocate(ownedByVariable, filledSize, filledSize);
    for (auto &file : machine.listSlots) {
        for (std::size_t i = 0; i < filledListCount; i++) file[i] = matrixAllocate(ownedByVariable, 1, filledSize);
    }
}

}  // namespace

void machineStart() {
    poolReset();
    machine.exhausted = false;
    openingTokensRefresh();
    emptySlots();
    if (settingsInt(setting::fillListsMatrices) != 0) fillSlots();
    clearText();
    clearGraph();  // still with the background picture of the run before
    machine.errorFlag = false;
    machine.screenMode = textMode;
    keyCode = 0;
    machine.variables.fill({});
    machine.rowColor.fill(pixelColor::blue);
    machine.graphSwitches.fill(false);
    machine.gridSwitch = false;
    machine.backgroundPicture = 0;
    machine.currentFile = 0;
    machine.statementsRun = 0;
}

int cutToInteger(double value) {
    constexpr double limit = 2147483646;
    if (!(value > -limit)) return -static_cast<int>(limit);  // also what is no number
    return static_cast<int>(value < limit ? value : limit);
}

}  // namespace numalink
