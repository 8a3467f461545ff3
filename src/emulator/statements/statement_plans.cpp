#include "emulator/statements/statement_plans.h"

#include <array>

#include "emulator/expressions/recording.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/block_search.h"
#include "emulator/machine/programs.h"
#include "emulator/screens/display.h"
#include "emulator/statements/statements.h"

namespace numalink {

namespace {

constexpr int withoutPlan = notTranslated + 1;  // the mark of what is left to the rows

std::vector<StatementPlan> plans;
std::vector<Operation> operations;
std::vector<ArrayName> arrays;
std::array<std::vector<int>, programLimit> marks;  // of each cell of a program that has been run

// What a run may take for plans; later statements are then left to the rows.
constexpr std::size_t planMemoryLimit = 8u << 20;

std::size_t memoryUsed() {
    return plans.size() * sizeof(StatementPlan) + operations.size() * sizeof(Operation) +
           arrays.size() * sizeof(ArrayName);
}

// One statement on its way to a plan.
struct Planning {
    const ProgramCell *program = nullptr;
    const ProgramCell *cells = nullptr;  // of the statement, in the program
    StatementPlan plan{};
    Recording recording;
    ProgramCell left[statementLimit];  // what an expression left
    int leftCount = 0;

    int position() const { return plan.start; }
    int terminator() const { return plan.start + plan.length; }
    bool isEnd(int at) const { return isToken(program[at], token::endOfProgram); }
    bool has(int cell, Token which) const { return cell < plan.length && isToken(cells[cell], which); }
    PlannedWay itsEnd() const { return {terminator() + 1, true}; }
    PlannedWay behind(int at) const { return {isEnd(at + 1) ? at + 1 : at + 2}; }

    // Records the cells from first up to end, excluded; true when count cells are left.
    bool record(int first, int end, int count) {
        leftCount = end - first;
        return leftCount > 0 && recordExpression(recording, cells + first, left, leftCount) && leftCount == count;
    }
    const ComplexValue *operand(int cell) const {
        return isNumber(left[cell]) ? operandOf(recording, left[cell]) : nullptr;
    }
    // The cells leave one number.
    bool recordValue(int first, int end) {
        if (!record(first, end, 1)) return false;
        plan.value = operand(0);
        return plan.value != nullptr;
    }
};

bool isRelation(OperationCode code) { return code >= OperationCode::less && code <= OperationCode::greater; }

// The condition from first up to end, excluded. Where a relation decides, the branch does it by itself.
bool planDecision(Planning &on, int first, int end) {
    on.plan.kind = PlanKind::branch;
    if (!on.recordValue(first, end)) return false;
    std::vector<Operation> &written = on.recording.operations;
    if (written.empty() || written.back().result != on.plan.value || !isRelation(written.back().code)) return true;
    on.plan.kind = PlanKind::relation;
    on.plan.relation = written.back().code;
    on.plan.left = written.back().left;
    on.plan.right = written.back().right;
    written.pop_back();
    return true;
}

bool planBranch(Planning &on, PlannedWay whenTrue, PlannedWay whenFalse) {
    on.plan.leaves = CellKind::token;
    on.plan.way = whenTrue;
    on.plan.whenFalse = whenFalse;
    return planDecision(on, 1, on.plan.length);
}

bool planJump(Planning &on, PlanKind kind, int target) {
    on.plan.kind = kind;
    on.plan.leaves = CellKind::token;
    on.plan.way = {target};
    return target != noPartner;
}

bool planNothing(Planning &on) {
    on.plan.kind = PlanKind::nothing;
    on.plan.way = on.itsEnd();
    return true;
}

bool planIf(Planning &on) {
    const int then = on.terminator() + 1;
    if (on.isEnd(on.terminator()) || !isToken(on.program[then], token::thenWord)) return false;
    const int at = findFalseBranch(on.program, on.position());
    const PlannedWay whenFalse = at == noPartner                            ? PlannedWay{0}
                                 : isToken(on.program[at], token::elseWord) ? PlannedWay{at + 1}
                                                                            : on.behind(at);
    return planBranch(on, {then + 1}, whenFalse);
}

bool planElse(Planning &on) {
    const int at = findIfEnd(on.program, on.position());
    return planJump(on, PlanKind::jump, at == noPartner ? 0 : at);
}

bool planWhile(Planning &on) {
    const int at = findWhileEnd(on.program, on.position());
    return at != noPartner && planBranch(on, on.itsEnd(), on.behind(at));
}

bool planWhileEnd(Planning &on) { return planJump(on, PlanKind::jump, findWhile(on.program, on.position())); }

bool planLoopWhile(Planning &on) {
    const int at = findDo(on.program, on.position());
    return at != noPartner && planBranch(on, {at}, on.itsEnd());
}

bool planNext(Planning &on) { return planJump(on, PlanKind::next, findFor(on.program, on.position())); }

bool planFor(Planning &on) {
    const int arrow = findToken(token::arrow, on.cells, 0, on.plan.length);
    const int next = findNext(on.program, on.position());
    if (arrow < 0 || next == noPartner || !on.record(0, arrow, 2)) return false;
    on.plan.kind = PlanKind::forLoop;
    on.plan.leaves = CellKind::token;
    on.plan.value = on.operand(1);
    if (on.plan.value == nullptr || arrow + 1 >= on.plan.length || !on.has(arrow + 2, token::to)) return false;
    on.plan.variable = variableRef(on.cells[arrow + 1]);
    on.plan.way = on.itsEnd();
    on.plan.whenFalse = on.behind(next);
    const int end = arrow + 3;
    if (on.plan.variable == nullptr || end >= on.plan.length) return false;
    if (!on.record(end, on.plan.length, 1)) {
        if (on.leftCount != 3 || on.recording.refused || !isToken(on.left[1], token::step)) return false;
        on.plan.column = on.operand(2);
        if (on.plan.column == nullptr) return false;
    }
    on.plan.row = on.operand(0);
    return on.plan.row != nullptr;
}

bool planCount(Planning &on, double step) {
    on.plan.kind = PlanKind::count;
    on.plan.step = step;
    on.plan.variable = on.plan.length > 1 ? variableRef(on.cells[1]) : nullptr;
    on.plan.way = on.itsEnd();
    if (on.plan.variable == nullptr || on.isEnd(on.terminator())) return false;
    const int next = findTerminator(on.program, on.terminator() + 1);
    on.plan.whenFalse = {next + 1};
    return !on.isEnd(next);
}
bool planDsz(Planning &on) { return planCount(on, -1); }
bool planIsz(Planning &on) { return planCount(on, 1); }

bool planGoto(Planning &on) {
    if (on.plan.length != 2 || (!isNumber(on.cells[1]) && on.cells[1].kind != CellKind::token)) return false;
    const int at = findLabel(on.program, on.cells[1]);
    if (at == noPartner) return false;
    const ProgramCell &terminator = on.program[at + 2];
    on.plan.kind = PlanKind::goTo;
    on.plan.leaves = CellKind::number;
    on.plan.start = at;
    on.plan.way = {at + 3, true};
    return isToken(terminator, token::newLine) || isToken(terminator, token::colon);
}

bool planProg(Planning &on) {
    if (on.plan.length != 2 || on.cells[1].kind != CellKind::string) return false;
    on.plan.kind = PlanKind::program;
    on.plan.program = findProgram(valueText(on.cells[1]));
    on.plan.way = on.itsEnd();
    return on.plan.program >= 0;
}

struct PlanRow {
    Token token;
    bool (*plan)(Planning &on) = nullptr;
};
constexpr PlanRow planRows[] = {
    {token::label, planNothing},       {token::dsz, planDsz},           {token::isz, planIsz},
    {token::goTo, planGoto},           {token::prog, planProg},         {token::ifWord, planIf},
    {token::elseWord, planElse},       {token::forWord, planFor},       {token::next, planNext},
    {token::whileWord, planWhile},     {token::whileEnd, planWhileEnd}, {token::doWord, planNothing},
    {token::loopWhile, planLoopWhile},
};

bool planCondition(Planning &on, int then) {
    on.plan.leaves = CellKind::number;
    on.plan.way = {on.position() + then + 1};
    on.plan.whenFalse = on.itsEnd();
    return planDecision(on, 0, then);
}

// From the name on stand the array's name, the bracket and the subscripts.
bool planElement(Planning &on, int name, bool isMatrix) {
    if (!on.has(name + 1, token::openBracket)) return false;
    const ProgramCell &cell = on.cells[name];
    const auto array = arrayNamed(isMatrix ? CellKind::matrix : CellKind::list, cell, cell.value.re);
    if (!array) return false;
    on.plan.array = *array;
    const int subscripts = isMatrix ? 3 : 1;
    const int first = name + 2;
    const int end = on.has(on.plan.length - 1, token::closeBracket) ? on.plan.length - 1 : on.plan.length;
    if (!on.record(first, end, subscripts)) return false;
    on.plan.kind = PlanKind::element;
    on.plan.row = on.operand(0);
    on.plan.column = isMatrix && isToken(on.left[1], token::comma) ? on.operand(2) : nullptr;
    return on.plan.row != nullptr && (!isMatrix || on.plan.column != nullptr);
}

// Where an operation makes the value, it may as well make it in its place: no operation reads the variable after it.
void assignByLastOperation(Planning &on) {
    if (on.recording.operations.empty()) return;
    Operation &last = on.recording.operations.back();
    if (last.result != on.plan.value) return;
    last.result = on.plan.variable;
    on.plan.kind = PlanKind::nothing;
}

bool planAssignment(Planning &on, int arrow) {
    if (!on.recordValue(0, arrow)) return false;
    on.plan.way = on.itsEnd();
    const int target = arrow + 1;
    if (target + 1 == on.plan.length) {
        on.plan.kind = PlanKind::assign;
        on.plan.variable = variableRef(on.cells[target]);
        if (on.plan.variable != nullptr) assignByLastOperation(on);
        return on.plan.variable != nullptr;
    }
    const bool isMatrix = on.has(target, token::matrix);
    if (!isMatrix && !on.has(target, token::list)) return false;
    return target + 1 < on.plan.length && planElement(on, target + 1, isMatrix);
}

// A word that neither a row nor an expression knows, by itself: IfEnd is one.
bool isInert(const Planning &on) {
    return on.plan.length == 1 && on.cells[0].kind == CellKind::token && factsOf(on.cells[0]).steps == 0;
}

bool planPlain(Planning &on) {
    if (isStatementWord(on.cells[0])) return false;
    if (const int then = findToken(token::then, on.cells, 0, on.plan.length); then >= 0) return planCondition(on, then);
    if (const int arrow = findToken(token::arrow, on.cells, 0, on.plan.length); arrow >= 0)
        return planAssignment(on, arrow);
    if (isInert(on)) {
        on.plan.leaves = CellKind::token;
        return planNothing(on);
    }
    on.plan.kind = PlanKind::expression;
    on.plan.leaves = CellKind::number;
    on.plan.way = on.itsEnd();
    return on.recordValue(0, on.plan.length);
}

// False: the statement is left to the rows.
bool makePlan(Planning &on) {
    if (on.plan.length > statementLimit || isToken(on.program[on.terminator()], token::displayTriangle)) return false;
    if (on.plan.length == 0) {
        on.plan.kind = PlanKind::empty;
        on.plan.way = on.itsEnd();
        return !on.isEnd(on.terminator());
    }
    for (const PlanRow &row : planRows) {
        if (isToken(on.cells[0], row.token)) return row.plan(on);
    }
    return planPlain(on);
}

int keepPlan(Planning &on) {
    StatementPlan &plan = on.plan;
    if (plan.way.ends && on.isEnd(plan.way.position - 1)) plan.way.position--;  // the end mark ends the program
    if (plan.whenFalse.ends && on.isEnd(plan.whenFalse.position - 1)) plan.whenFalse.position--;
    plan.firstOperation = static_cast<int>(operations.size());
    plan.operationCount = static_cast<int>(on.recording.operations.size());
    operations.insert(operations.end(), on.recording.operations.begin(), on.recording.operations.end());
    plan.firstArray = static_cast<int>(arrays.size());
    plan.readArrays = static_cast<int>(on.recording.arrays.size());
    arrays.insert(arrays.end(), on.recording.arrays.begin(), on.recording.arrays.end());
    if (plan.kind == PlanKind::element) arrays.push_back(plan.array);
    plan.arrayCount = static_cast<int>(arrays.size()) - plan.firstArray;
    plans.push_back(plan);
    return static_cast<int>(plans.size()) - 1;
}

int translate(const LoadedProgram &program, int position) {
    if (memoryUsed() > planMemoryLimit) return withoutPlan;
    static Planning on;  // too large for a stack of calls within calls
    on.program = program.cells;
    on.cells = program.cells + position;
    on.plan = {};
    on.plan.start = position;
    on.plan.length = program.terminators[position] - position;
    on.recording = {};
    return makePlan(on) ? keepPlan(on) : withoutPlan;
}

}  // namespace

PlanView planView(int program) {
    std::vector<int> &ofProgram = marks[static_cast<std::size_t>(program)];
    if (ofProgram.empty()) {
        ofProgram.assign(static_cast<std::size_t>(loadedProgram(program).cellCount), notTranslated);
        if (plans.empty()) plans.resize(withoutPlan + 1);
    }
    return {ofProgram.data(), plans.data(), operations.data()};
}

void translateStatement(int program, int position) {
    marks[static_cast<std::size_t>(program)][static_cast<std::size_t>(position)] =
        translate(loadedProgram(program), position);
}

bool plannedArraysExist(const StatementPlan &plan) {
    const ArrayName *const names = arrays.data() + plan.firstArray;
    std::int64_t cells = 0;
    for (int i = 0; i < plan.arrayCount; i++) {
        MatrixDescriptor *const slot = slotOf(names[i]);
        if (slot == nullptr) return false;
        if (i < plan.readArrays) cells += matrixSize(slot);
    }
    return matrixCopiesFit(cells, plan.readArrays);
}

void statementPlansForget() {
    plans.clear();
    operations.clear();
    arrays.clear();
    for (std::vector<int> &ofProgram : marks) ofProgram = {};
}

}  // namespace numalink
