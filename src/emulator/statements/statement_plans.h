// Statements translated once, when they are first reached: what a statement of a fixed shape does, with its operands
// resolved to places, its jumps to positions and its expressions to operations. A statement whose shape isn't fixed, or
// whose row isn't worth it, has no plan and is left to the rows, cell by cell. Run thread.
#pragma once

#include "emulator/expressions/expression_code.h"

namespace numalink {

enum class PlanKind : std::uint8_t {
    none,        // left to the rows
    empty,       // between two terminators
    nothing,     // Lbl, Do, IfEnd: nothing to do
    expression,  // value to Ans
    assign,      // value to a variable
    element,     // value to an element of an array
    branch,      // If, While, LpWhile, the double arrow
    relation,    // the same where a relation decides
    jump,        // Else, WhileEnd
    forLoop,
    next,
    count,   // Dsz, Isz
    goTo,    // to a label
    program  // Prog
};

// Where a way leads: a jump, or the normal end of the statement, which looks at errors and refreshes the screen.
struct PlannedWay {
    int position = 0;
    bool ends = false;
};

struct StatementPlan {
    PlanKind kind = PlanKind::none;
    CellKind leaves = CellKind::blank;  // what stands in cell 0 afterwards, as the end of a program shows it
    int operationCount = 0, firstOperation = 0;
    int arrayCount = 0, firstArray = 0;   // that must exist, those read ahead of the one written to
    int readArrays = 0;                   // how many are read
    const ComplexValue *value = nullptr;  // result of the expression; For: the start
    OperationCode relation = OperationCode::equal;
    const ComplexValue *left = nullptr, *right = nullptr;  // of the relation
    const ComplexValue *row = nullptr, *column = nullptr;  // element: its place; For: the end and the step, if any
    ComplexValue *variable = nullptr;
    ArrayName array;
    double step = 0;            // Dsz, Isz
    int start = 0, length = 0;  // of the statement that ends: at start + length stands its terminator
    PlannedWay way, whenFalse;
    int program = -1;
};

// Where the plans of a program lie: plans[marks[position]] is the one of the statement at the position, unless the mark
// is notTranslated. Holds until the next translation.
inline constexpr int notTranslated = 0;
struct PlanView {
    const int *marks = nullptr;
    const StatementPlan *plans = nullptr;
    const Operation *operations = nullptr;
};
PlanView planView(int program);
void translateStatement(int program, int position);
// Whether all arrays of the plan exist, and copies of those that it reads would fit the memory.
bool plannedArraysExist(const StatementPlan &plan);

// Throws all plans away: the programs or the words of the language are about to change.
void statementPlansForget();

}  // namespace numalink
