// The statements that clear or extend memories.
#include "emulator/machine/named_values.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

WayOut runClearVariables(RunState &state) {
    expectAlone(state);
    machine.variables.fill({});
    return handled(state);
}

// What statistics leave: a run of tokens in each row.
struct ResultRow {
    Token first, last;
};
constexpr ResultRow statisticsResults[] = {
    {{0x7F, 0x1D}, {0x7F, 0x1F}},
    {{0x7F, 0x76}, {0x7F, 0x7D}},
    {{0x7F, 0xBE}, {0x7F, 0xBE}},
    {{0x7F, 0xC0}, {0x7F, 0xCB}},
    {{0x7F, 0xCE}, {0x7F, 0xE4}},
    {{0x7F, 0xFB}, {0x7F, 0xFE}},
    {{0x8F}, {0x8F}},
    {{0x9E}, {0x9F}},
    {{0xAD}, {0xAF}},
    {{0xBD}, {0xBF}},
    {{0xC2}, {0xCC}},
    {{0xCF}, {0xCF}},
    {{0xDF}, {0xDF}},
};

WayOut runClearStatistics(RunState &state) {
    expectAlone(state);
    for (const ResultRow &row : statisticsResults) {
        const bool isPair = isTwoByteLead(row.first.first);
        for (int byte = isPair ? row.first.second : row.first.first;
             byte <= (isPair ? row.last.second : row.last.first); byte++) {
            const auto last = static_cast<std::uint8_t>(byte);
            if (ComplexValue *value = namedValueRef(isPair ? Token{row.first.first, last} : Token{last})) *value = {};
        }
    }
    return handled(state);
}

// Memories beyond Z: every list and matrix has its room here without being asked for.
WayOut runExtend(RunState &state) {
    evaluateRest(state);
    expectShape(state, 2, "n");
    return handled(state);
}

constexpr StatementRow rows[] = {
    one({0xD2}, runClearVariables),   // Mcl
    one({0xD8}, runClearStatistics),  // Scl
    one({0xE5}, runExtend),           // Defm
};

}  // namespace

std::span<const StatementRow> memoryStatements() { return rows; }

}  // namespace numalink
