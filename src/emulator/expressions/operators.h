// What the evaluator knows of a token: the steps that act on it, on what, and what it computes. Any thread.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "emulator/machine/cells.h"

namespace numalink {

// The steps of evaluate in their order, which is the precedence of the language.
enum class Step : std::uint8_t {
    none,
    baseNumbers,  // digits in the base in use or told ahead of them
    quotedCalls,  // calls that take an expression as it is written
    arrays,
    subscripts,
    literals,
    firstProduct,  // implicit
    parentheses,
    variables,
    graphFunctions,
    inputs,
    complexPrefix,
    postfix,
    power,
    secondProduct,
    prefix,
    thirdProduct,
    combination,
    multiplication,
    sign,
    addition,
    relation,
    logicalAnd,
    logicalOr,
    lonePoint
};
inline constexpr int stepCount = 25;  // with none

using StepMask = std::uint32_t;
constexpr StepMask maskOf(Step step) { return StepMask{1} << static_cast<int>(step); }

using UnaryOperation = ComplexValue (*)(ComplexValue);
using BinaryOperation = ComplexValue (*)(ComplexValue, ComplexValue);

// What an operation's result is held to. A result beyond, or that is no number, reports Ma ERROR and goes on as it is.
enum class Bound : std::uint8_t {
    none,           // infinity and what is no number are values like others
    ofCalculators,  // largestResult to either side, in both parts
    unlessPositive  // the same, but for a real left operand above 0 with a real right one from 0 on
};
inline constexpr double largestResult = 9.999999999e99;

// The arguments of a call: the cells behind its token, up to the closing place.
struct CallArguments {
    ProgramCell *cells = nullptr;
    int first = 0;
    int count = 0;

    int end() const { return first + count; }
};
using CallOperation = ProgramCell (*)(const CallArguments &arguments);  // a number of 0 after a report

struct OperatorRow {
    Token token;
    Step step = Step::none;
    const char *name = nullptr;                      // for traces and tests
    UnaryOperation unary = nullptr;                  // prefix and postfix
    BinaryOperation binary = nullptr;                // left and right
    ComplexValue (*source)() = nullptr;              // a value from nowhere: GetKey, i, ?, Ran#, pi
    void (*onArrays)(ProgramCell *, int) = nullptr;  // Dim, Identity, Sum: the cell of the token
    CallOperation call = nullptr;                    // parentheses and quotedCalls
    Bound bound = Bound::none;
};

// A group's table stands in a file of its own and is made with these; steps rise within it.
template <std::size_t count>
constexpr bool stepsRise(const OperatorRow (&rows)[count]) {
    return std::ranges::is_sorted(rows, {}, &OperatorRow::step);
}
constexpr OperatorRow source(Token token, const char *name, ComplexValue (*value)()) {
    return {.token = token, .step = Step::inputs, .name = name, .source = value};
}
constexpr OperatorRow unary(Token token, Step step, const char *name, UnaryOperation operation,
                            Bound bound = Bound::none) {
    return {.token = token, .step = step, .name = name, .unary = operation, .bound = bound};
}
constexpr OperatorRow binary(Token token, Step step, const char *name, BinaryOperation operation,
                             Bound bound = Bound::none) {
    return {.token = token, .step = step, .name = name, .binary = operation, .bound = bound};
}
constexpr OperatorRow onArrays(Token token, const char *name, void (*operation)(ProgramCell *, int)) {
    return {.token = token, .step = Step::prefix, .name = name, .onArrays = operation};
}
// The token's text ends in the opening parenthesis. The arguments have had the steps ahead of the parentheses, and what
// stands in parentheses within them is evaluated.
constexpr OperatorRow call(Token token, const char *name, CallOperation operation) {
    return {.token = token, .step = Step::parentheses, .name = name, .call = operation};
}
// The same with the arguments as they are written, ahead of every step.
constexpr OperatorRow quotedCall(Token token, const char *name, CallOperation operation) {
    return {.token = token, .step = Step::quotedCalls, .name = name, .call = operation};
}

// Whether a token opens a pair of parentheses, and whether it is a function call. It follows the token table as it was
// when refreshOpeningTokens (vocabulary.h) last ran.
enum class Opening : std::uint8_t { none, plain, function };

// Looked up by the lead byte's page, then by the byte that counts.
struct TokenFacts {
    StepMask steps = 0;                 // the steps that act on it
    const OperatorRow *row = nullptr;   // of its step with an operation; plus and minus: the binary one
    const OperatorRow *sign = nullptr;  // unary plus and minus
    Opening opening = Opening::none;
    bool standsBetween = false;        // a binary operator, or a token that no step knows
    ComplexValue *variable = nullptr;  // what variableRef gives
};
using TokenPage = std::array<TokenFacts, 256>;
inline std::array<TokenPage, 3> tokenFacts;  // one-byte tokens, 0x7F, 0xF7; written by refreshOpeningTokens alone

inline const TokenFacts &factsOf(const ProgramCell &cell) {  // of a token cell
    if (!isTwoByteLead(cell.token1)) return tokenFacts[0][cell.token1];
    return tokenFacts[cell.token1 == 0x7F ? 1 : 2][cell.token2];
}

// The row of this cell's token in this step, or null.
inline const OperatorRow *operatorRow(const ProgramCell &cell, Step step) {
    if (cell.kind != CellKind::token) return nullptr;
    const OperatorRow *row = factsOf(cell).row;
    return row != nullptr && row->step == step ? row : nullptr;
}
inline const OperatorRow *signRow(const ProgramCell &cell) {
    return cell.kind == CellKind::token ? factsOf(cell).sign : nullptr;
}

}  // namespace numalink
