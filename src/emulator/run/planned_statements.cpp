#include "emulator/run/planned_statements.h"

#include <algorithm>

#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/run_waits.h"
#include "emulator/statements/statement_plans.h"

namespace numalink {

namespace {

constexpr std::uint64_t lookInterval = 4096;  // statements

void storePlanned(const StatementPlan &plan) {
    MatrixDescriptor *const slot = slotOf(plan.array);
    const int row = cutToInteger(plan.row->re) - 1;
    const int column = plan.column == nullptr ? 0 : cutToInteger(plan.column->re) - 1;
    if (column < 0 || column >= slot->cols || row < 0 || row >= slot->rows) {
        argError();
    } else {
        matrixElement(slot, column, row) = plan.value->re;
    }
}

const PlannedWay &countFor(RunState &state, const StatementPlan &plan) {
    const double start = plan.value->re, end = plan.row->re, step = plan.column == nullptr ? 1 : plan.column->re;
    double &counter = plan.variable->re;
    counter = state.forContinuing ? counter + step : start;
    state.forContinuing = false;
    const bool goesOn = step >= 0 ? counter <= end : step < 0 && counter >= end;
    if (!goesOn) counter -= step;
    return goesOn ? plan.way : plan.whenFalse;
}

bool holds(const StatementPlan &plan) {
    const double left = plan.left->re, right = plan.right->re;
    switch (plan.relation) {
        case OperationCode::less:
            return left < right;
        case OperationCode::lessOrEqual:
            return left <= right;
        case OperationCode::notEqual:
            return left != right;
        case OperationCode::greaterOrEqual:
            return left >= right;
        case OperationCode::greater:
            return left > right;
        default:
            return left == right;
    }
}

// Both walks have it within them: as a call it costs the shortest loops 4 %.
[[gnu::always_inline]] inline const PlannedWay &carryOut(RunState &state, const StatementPlan &plan) {
    switch (plan.kind) {
        case PlanKind::expression:
            machine.ans = *plan.value;
            break;
        case PlanKind::assign:
            *plan.variable = *plan.value;
            break;
        case PlanKind::element:
            storePlanned(plan);
            break;
        case PlanKind::branch:
            return plan.value->re != 0 ? plan.way : plan.whenFalse;
        case PlanKind::relation:
            return holds(plan) ? plan.way : plan.whenFalse;
        case PlanKind::forLoop:
            return countFor(state, plan);
        case PlanKind::next:
            state.forContinuing = true;
            break;
        case PlanKind::count:
            plan.variable->re += plan.step;
            return plan.variable->re == 0 ? plan.whenFalse : plan.way;
        case PlanKind::none:
        case PlanKind::empty:
        case PlanKind::nothing:
        case PlanKind::jump:
        case PlanKind::goTo:
        case PlanKind::program:
            break;
    }
    return plan.way;
}

// What the statement loop does ahead of each statement, and no planned one needs again.
void beginStatements() {
    freeTemporaries();
    machine.textColumn = 0;
}

template <bool isObserved>
PlannedStop runPlans(RunState &state, PlannedRun &run) {
    const std::uint64_t limit = run.statementLimit == 0 ? UINT64_MAX : run.statementLimit;
    const std::uint64_t look = std::min(limit, machine.statementsRun + lookInterval);
    PlanView view = planView(state.programIndex);
    bool isFirst = true;
    for (;;) {
        if (view.marks[state.position] == notTranslated) {
            translateStatement(state.programIndex, state.position);
            view = planView(state.programIndex);
        }
        const StatementPlan &plan = view.plans[view.marks[state.position]];
        if (plan.kind == PlanKind::none || machine.statementsRun >= look || !runGoesOn())
            return PlannedStop::plainStatement;
        if (plan.arrayCount > 0 && !plannedArraysExist(plan)) return PlannedStop::plainStatement;
        if constexpr (isObserved) {
            if (observerAsks(state.programIndex, state.position) && !run.observer->beforeStatement(state))
                return PlannedStop::stopped;
        }
        machine.statementsRun++;
        if (plan.kind != PlanKind::empty) {
            if (isFirst) beginStatements();
            isFirst = false;
            if (plan.operationCount > 0) carryOut(view.operations + plan.firstOperation, plan.operationCount);
            state.statement[0].kind = plan.leaves;
        }
        const PlannedWay &way = carryOut(state, plan);
        const bool isCall = plan.kind == PlanKind::program;
        if (isCall || (way.ends && (machine.errorFlag || run.refreshDue))) {
            run.called = plan.program;
            state.position = plan.start;
            state.statementLength = plan.length;
            return isCall ? PlannedStop::programCall : PlannedStop::statementEnd;
        }
        state.position = way.position;
    }
}

}  // namespace

PlannedStop runPlanned(RunState &state, PlannedRun &run) {
    return run.observer == nullptr ? runPlans<false>(state, run) : runPlans<true>(state, run);
}

}  // namespace numalink
