// The statements on lists as data: clearing, and what statistics makes of them.
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

void clearSlot(MatrixSlot &slot) {
    matrixFree(slot);
    slot = nullptr;
}

// The list of a number, or all those of the file in use.
WayOut runClearList(RunState &state) {
    evaluateRest(state);
    if (state.cellCount == 1) {
        auto &file = machine.listSlots[static_cast<std::size_t>(machine.currentFile)];
        for (std::size_t i = 0; i < listNumberLimit; i++) clearSlot(file[i]);
        return handled(state);
    }
    MatrixSlot *slot = state.cellCount == 2 ? listSlotRef(state.statement, 1) : nullptr;
    if (slot == nullptr) {
        synError();
    } else {
        clearSlot(*slot);
    }
    return handled(state);
}

constexpr StatementRow rows[] = {
    one({0xF7, 0x1A}, runClearList),  // ClrList
};

}  // namespace

std::span<const StatementRow> statisticsStatements() { return rows; }

}  // namespace numalink
