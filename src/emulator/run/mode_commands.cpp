#include "emulator/run/mode_commands.h"

#include <algorithm>

#include "emulator/machine/block_search.h"
#include "emulator/machine/cells.h"
#include "emulator/machine/programs.h"
#include "emulator/run/reached_programs.h"
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

}  // namespace

std::vector<std::string> modeCommandsOfRun() {
    std::vector<std::string> names;
    const std::vector<int> programs = programsReached();
    for (const Token command : modeCommands) {
        const bool isThere = std::ranges::any_of(programs, [&](int program) {
            return findToken(command, loadedProgram(program).cells, 0, loadedProgram(program).cellCount) >= 0;
        });
        if (isThere) names.push_back(nameOf(command));
    }
    return names;
}

}  // namespace numalink
