// The reset at the start of a run, and what the rooms below are told of those above them.
#include "emulator/run/machine_start.h"

#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/machine/statistics_memory.h"
#include "emulator/screens/graph_screen.h"
#include "emulator/screens/text_screen.h"
#include "settings/settings_store.h"

namespace numalink {

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
    errorShown = showError;
    machine.exhausted = false;
    refreshOpeningTokens();
    emptySlots();
    graphs = {};
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
    machine.calculatorModes = settingsInt(setting::calculatorModes) != 0;
    machine.angleUnit = AngleUnit::radians;
    machine.format = {};
    machine.numberBase = decimalBase;
    machine.namedValues.fill({});
    statisticsMemory = {};
    statisticsMemory.graphs[0].isOn = true;
    machine.backgroundPicture = 0;
    machine.currentFile = 0;
    machine.statementsRun = 0;
}

}  // namespace numalink
