// The evaluator's vocabulary as one table: which token acts in which step, on what, and what it computes. Fixed; any
// thread.
#pragma once

#include <cstdint>
#include <span>

#include "emulator/cells.h"

namespace numalink {

// The steps of evaluate in their order, which is the precedence of the language.
enum class Step : std::uint8_t {
    none,
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
    multiplication,
    sign,
    addition,
    relation,
    logicalAnd,
    logicalOr,
    lonePoint
};
inline constexpr int stepCount = 22;  // with none

using StepMask = std::uint32_t;
constexpr StepMask maskOf(Step step) { return StepMask{1} << static_cast<int>(step); }

using UnaryOperation = ComplexValue (*)(ComplexValue);
using BinaryOperation = ComplexValue (*)(ComplexValue, ComplexValue);

struct OperatorRow {
    Token token;
    Step step = Step::none;
    const char *name = nullptr;          // for traces and tests
    UnaryOperation unary = nullptr;      // prefix and postfix
    BinaryOperation binary = nullptr;    // left and right
    ComplexValue (*source)() = nullptr;  // a value from nowhere: GetKey, i, ?, Ran#, pi
};

std::span<const OperatorRow> operatorRows();

// The row of this token in this step, or null. Dim, Identity and Sum have rows of no operation.
const OperatorRow *operatorRow(const ProgramCell &cell, Step step);

// The steps that have something to do at this cell, openings of function calls included.
StepMask stepsAt(const ProgramCell &cell);

// Whether a token opens a pair of parentheses, and whether it is a function call. It follows the token table as it was
// when openingTokensRefresh last ran: machineStart does that.
enum class Opening : std::uint8_t { none, plain, function };
Opening openingOf(const ProgramCell &cell);
void openingTokensRefresh();

// A generator of 0 to 32767, never seeded: each process meets the same sequence.
int chance();

}  // namespace numalink
