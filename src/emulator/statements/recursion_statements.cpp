// The statements of number tables and recursions.
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

// Tables go by start, end and pitch, as they do from the start.
WayOut runVarRange(RunState &state) {
    expectAlone(state);
    return handled(state);
}

constexpr StatementRow rows[] = {
    one({0xF7, 0x88}, runVarRange),  // VarRange
};

}  // namespace

std::span<const StatementRow> recursionStatements() { return rows; }

}  // namespace numalink
