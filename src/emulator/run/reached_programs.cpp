#include "emulator/run/reached_programs.h"

#include <algorithm>

#include "emulator/machine/programs.h"
#include "emulator/screens/display.h"

namespace numalink {

std::vector<int> programsReached() {
    std::vector<int> reached;
    if (programCount() > 0) reached.push_back(0);
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

}  // namespace numalink
