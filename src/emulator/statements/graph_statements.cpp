// The statements of function graphs.
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

WayOut runGridOn(RunState &state) {
    expectAlone(state);
    machine.gridSwitch = true;
    return handled(state);
}

constexpr StatementRow rows[] = {
    one({0xF7, 0x7D}, runGridOn),  // GridOn
};

}  // namespace

std::span<const StatementRow> graphStatements() { return rows; }

}  // namespace numalink
