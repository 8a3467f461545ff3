#include "emulator/run/mode_commands.h"

#include <algorithm>

#include "emulator/machine/block_search.h"
#include "emulator/machine/cells.h"
#include "emulator/machine/programs.h"
#include "emulator/screens/display.h"
#include "text/token_table.h"

namespace numalink {

namespace {

// Norm, Deg, Gra, Eng, Break. Not Rad: angles are in radians in any case.
constexpr Token modeCommands[] = {{0xD9}, {0xDA}, {0xDC}, {0xDD}, {0xF7, 0x0D}};

std::string nameOf(Token command) {
    const std::uint8_t bytes[] = {command.first, command.second};
    std::string_view text;
    tokenToText(ByteView(bytes, isTwoByteLead(command.first) ? 2 : 1), text);
    return std::string(text);
}

// The program's index, and behind it those of all that it calls, however deep.
std::vector<int> programsReached() {
    std::vector<int> reached = {0};
    for (std::size_t i = 0; i < reached.size(); i++) {
        const LoadedProgram &program = loadedProgram(reached[i]);
        for (int cell = 0; cell + 1 < program.cellCount; cell++) {
            const bool isCall =
                isToken(program.cells[cell], token::prog) && program.cells[cell + 1].kind == CellKind::string;
            const int called = isCall ? findProgram(valueText(program.cells[cell + 1])) : -1;
            if (called >= 0 && std::ranges::find(reached, called) == reached.end()) reached.push_back(called);
        }
    }
    return reached;
}

}  // namespace

std::vector<std::string> modeCommandsOfRun() {
    std::vector<std::string> names;
    const std::vector<int> programs = programCount() > 0 ? programsReached() : std::vector<int>();
    for (const Token command : modeCommands) {
        const bool isThere = std::ranges::any_of(programs, [&](int program) {
            return findToken(command, loadedProgram(program).cells, 0, loadedProgram(program).cellCount) >= 0;
        });
        if (isThere) names.push_back(nameOf(command));
    }
    return names;
}

}  // namespace numalink
