// The evaluator passes by steps that have nothing to act on. Here every step walks as well, over expressions made by
// chance, and both ways must leave the same cells, bit for bit.
#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <span>

#include "emulator/arrays.h"
#include "emulator/evaluator.h"
#include "emulator/expressions.h"
#include "emulator/operators.h"
#include "emulator/programs.h"

namespace numalink {
namespace {

using Random = std::mt19937;

int below(Random &random, int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }

ProgramCell oneOf(Random &random, std::span<const unsigned> tokens) {
    const unsigned code = tokens[random() % tokens.size()];
    if (code < 0x100) return tokenCell({static_cast<std::uint8_t>(code)});
    return tokenCell({static_cast<std::uint8_t>(code >> 8), static_cast<std::uint8_t>(code)});
}

// Half of the cells in the places where an expression wants them, half anything.
ProgramCell anyCell(Random &random) {
    static constexpr unsigned structure[] = {'(',  ')',    '[',    ']',  '{',    '}',    ',',    '.',
                                             ' ',  0x7F51, 0x7F40, 0xC0, 0x7F2C, 0x7F49, 0x7F4A, 0x14,
                                             0x15, 0x16,   'A',    'B',  'C',    0x7F04, 0xE0};
    const auto rows = operatorRows();
    switch (below(random, 8)) {
        case 0:
            return oneOf(random, structure);
        case 1:
        case 2: {
            const OperatorRow &row = rows[static_cast<std::size_t>(below(random, static_cast<int>(rows.size())))];
            // Ran# never comes twice alike, ? waits for keys
            return row.source != nullptr ? tokenCell({0x7F, 0x50}) : tokenCell(row.token);
        }
        case 3:
            return tokenCell({static_cast<std::uint8_t>('A' + below(random, 4))});
        case 4:
            return below(random, 40) == 0 ? ProgramCell{} : tokenCell(token::plus);
        default:
            return numberCell(complexReal(below(random, 5)));
    }
}

void addValue(Random &random, std::vector<ProgramCell> &cells, int depth);

void addExpression(Random &random, std::vector<ProgramCell> &cells, int depth) {
    static constexpr unsigned between[] = {0x89, 0x99, 0xA9, 0xB9, 0xA8, '<', 0x7FB0, 0xAA, ','};
    addValue(random, cells, depth);
    for (int more = below(random, 3); more > 0; more--) {
        if (below(random, 5) > 0) cells.push_back(oneOf(random, between));
        addValue(random, cells, depth);
    }
}

void addValue(Random &random, std::vector<ProgramCell> &cells, int depth) {
    static constexpr std::pair<Token, Token> around[] = {{{0x28}, {0x29}}, {{0x7B}, {0x7D}}, {{0x5B}, {0x5D}}};
    static constexpr unsigned prefixes[] = {0x81, 0x87, 0xA6, 0x7F22, 0x99, 0x7F46, 0x7F4C};
    if (below(random, 6) == 0) cells.push_back(oneOf(random, prefixes));
    if (depth > 0 && below(random, 3) == 0) {
        const auto &[open, close] = around[below(random, std::size(around))];
        if (open == token::openBracket) {
            cells.push_back(tokenCell(below(random, 2) == 0 ? token::openBracket : token::list));
            if (isToken(cells.back(), token::list)) cells.push_back(numberCell(complexReal(1)));
        }
        cells.push_back(tokenCell(open));
        addExpression(random, cells, depth - 1);
        if (below(random, 8) > 0) cells.push_back(tokenCell(close));
    } else {
        cells.push_back(anyCell(random));
    }
}

// The result of one way, with all that a later statement could see.
struct Outcome {
    std::vector<ProgramCell> cells;  // arrays as their elements
    std::string reports;
    std::vector<std::uint64_t> bits;
    friend bool operator==(const Outcome &left, const Outcome &right) {
        return left.reports == right.reports && left.bits == right.bits;
    }
};

Outcome outcomeOf(FreshMachine &fresh, std::vector<ProgramCell> cells, bool plainly) {
    poolReset();
    machine.matrixSlots.fill(nullptr);
    machine.listSlots[0].fill(nullptr);
    fresh.reports.clear();
    for (std::size_t i = 0; i < 26; i++) machine.variables[i] = complexMake(static_cast<double>(i) - 1, i == 3);
    setList(1, {3, 1, 2});
    setMatrix('A', 2, {1, 2, 3, 4});
    evaluatePlainly = plainly;
    int count = static_cast<int>(cells.size());
    evaluate(cells.data(), 0, count);
    evaluatePlainly = false;
    Outcome outcome;
    const auto addDouble = [&](double value) { outcome.bits.push_back(std::bit_cast<std::uint64_t>(value)); };
    for (int i = 0; i < count; i++) {
        const ProgramCell &cell = cells[static_cast<std::size_t>(i)];
        outcome.bits.push_back(static_cast<std::uint64_t>(cell.kind) << 16 | std::uint64_t{cell.token1} << 8 |
                               cell.token2);
        addDouble(cell.value.re);
        addDouble(cell.value.im);
        if (!isArray(cell)) continue;
        outcome.bits.push_back(static_cast<std::uint64_t>(cell.matrix->cols));
        for (int k = 0; k < matrixSize(cell.matrix); k++) addDouble(matrixElements(cell.matrix)[k]);
    }
    for (const ComplexValue &variable : machine.variables) addDouble(variable.re);
    for (const ErrorReport &report : fresh.reports) outcome.reports += report.text;
    return outcome;
}

TEST(PlainAndFast, LeaveTheSameBits) {
    Random random(20);
    FreshMachine fresh;
    programAdd("f1", imageOfWords("A+2"));
    programAdd("f2", imageOfWords("\\sin "));
    programAdd("f3", imageOfWords("()"));
    int faultless = 0;
    for (int round = 0; round < 12000; round++) {
        std::vector<ProgramCell> cells;
        if (round % 3 == 0) {
            for (int i = below(random, 12); i >= 0; i--) cells.push_back(anyCell(random));
        } else {
            addExpression(random, cells, 3);
        }
        const Outcome plain = outcomeOf(fresh, cells, true);
        ASSERT_EQ(plain, outcomeOf(fresh, cells, false)) << textOfCells(cells.data(), static_cast<int>(cells.size()));
        faultless += plain.reports.empty();
    }
    EXPECT_GT(faultless, 3000) << "too few sound expressions to tell anything";
}

}  // namespace
}  // namespace numalink
