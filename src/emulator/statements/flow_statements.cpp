// Ways on from a statement that aren't blocks: Return and Menu.
#include <vector>

#include "emulator/machine/errors.h"
#include "emulator/screens/choice_menu.h"
#include "emulator/screens/display.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

// Back to the caller; from the program that was started, the end.
WayOut runReturn(RunState &state) {
    expectAlone(state);
    return WayOut::programEnds;
}

bool isComma(const RunState &state, int cell) {
    return hasCell(state, cell) && isToken(state.statement[cell], token::comma);
}
bool isString(const RunState &state, int cell) {
    return hasCell(state, cell) && state.statement[cell].kind == CellKind::string;
}

// Title, then text and label of each choice, all as they are written.
WayOut runMenu(RunState &state) {
    std::vector<std::string> choices;
    std::vector<ProgramCell> labels;
    int cell = 2;
    for (; isComma(state, cell) && isString(state, cell + 1) && isComma(state, cell + 2) && hasCell(state, cell + 3);
         cell += 4) {
        choices.push_back(valueText(state.statement[cell + 1]));
        labels.push_back(state.statement[cell + 3]);
    }
    const bool fits =
        isString(state, 1) && cell == state.cellCount && !choices.empty() && choices.size() <= choiceLimit;
    if (!fits) {
        synError();
        return handled(state);
    }
    const int choice = askChoice(valueText(state.statement[1]), choices);
    return choice < 0 ? handled(state) : goToLabel(state, labels[static_cast<std::size_t>(choice)]);
}

constexpr StatementRow rows[] = {
    one({0xF7, 0x0C}, runReturn),  // Return
    one({0xF7, 0x9E}, runMenu),    // Menu
};

}  // namespace

std::span<const StatementRow> flowStatements() { return rows; }

}  // namespace numalink
