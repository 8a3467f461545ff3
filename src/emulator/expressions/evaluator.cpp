// The order of the steps, and the walk that passes by those with nothing to act on.
#include "emulator/expressions/evaluator.h"

#include <bit>

#include "emulator/expressions/evaluator_steps.h"
#include "emulator/machine/pace.h"

namespace numalink {

bool evaluateWithoutShortcuts = false;

namespace {

struct EvaluatorStep {
    Step step;
    const char *name;
    void (*run)(Stretch &stretch);
    bool compactsAfter;
};

// Precedence is the order of these rows.
constexpr EvaluatorStep evaluatorSteps[] = {
    {Step::none, "", nullptr, false},
    {Step::baseNumbers, "digits of other bases", readBaseNumbers, false},
    {Step::quotedCalls, "calls of expressions", closeQuotedCalls, false},
    {Step::arrays, "array variables", resolveArrays, false},
    {Step::subscripts, "subscripts", resolveSubscripts, false},
    {Step::literals, "literals", makeLiterals, false},
    {Step::firstProduct, "implicit product, first", multiplyNeighbours, true},
    {Step::parentheses, "parentheses and calls", closeParentheses, false},
    {Step::variables, "variables", readVariables, false},
    {Step::graphFunctions, "f1 to f6", callGraphFunctions, false},
    {Step::inputs, "GetKey, i, ?, Ran#, pi", takeInputs, false},
    {Step::complexPrefix, "complex prefixes", applyComplexPrefixes, true},
    {Step::postfix, "postfixes", applyPostfixes, true},
    {Step::power, "power and root", applyPowers, true},
    {Step::secondProduct, "implicit product, second", multiplyNeighbours, true},
    {Step::prefix, "prefixes", applyPrefixes, true},
    {Step::thirdProduct, "implicit product, third", multiplyNeighbours, true},
    {Step::combination, "nPr, nCr", applyBinary<Step::combination>, true},
    {Step::multiplication, "times and divide", applyBinary<Step::multiplication>, true},
    {Step::sign, "signs", applySigns, true},
    {Step::addition, "plus and minus", applyBinary<Step::addition>, true},
    {Step::relation, "relations", applyBinary<Step::relation>, true},
    {Step::logicalAnd, "And", applyBinary<Step::logicalAnd>, true},
    {Step::logicalOr, "Or", applyBinary<Step::logicalOr>, true},
    {Step::lonePoint, "lone point", clearLonePoint, false},
};
static_assert(std::size(evaluatorSteps) == stepCount);

constexpr StepMask products = maskOf(Step::firstProduct) | maskOf(Step::secondProduct) | maskOf(Step::thirdProduct);

void runPlainly(Stretch &stretch) {
    for (const EvaluatorStep &step : evaluatorSteps) {
        if (step.run == nullptr) continue;
        step.run(stretch);
        if (step.compactsAfter) stretch.compact();
    }
}

// A stored function may leave any cell, a token or a blank among them, and these steps bring it into the stretch: their
// own, or that of an inner stretch.
constexpr StepMask takingGraphFunctions =
    maskOf(Step::subscripts) | maskOf(Step::literals) | maskOf(Step::parentheses) | maskOf(Step::graphFunctions);

void findStepsBehind(Stretch &stretch, Step done) {
    const StepMask known = stretch.pending;
    findSteps(stretch);
    if (stretch.hasBlanks) stretch.pending |= maskOf(Step::complexPrefix);  // compacts next
    stretch.pending = (stretch.pending & ~((maskOf(done) << 1) - 1)) | known;
}

// Nothing but a step that walks leaves blanks, so that those passed by have none to compact.
void runPending(Stretch &stretch) {
    const bool hasGraphFunctions = (stretch.pending & maskOf(Step::graphFunctions)) != 0;
    while (stretch.pending != 0) {
        const EvaluatorStep &step = evaluatorSteps[std::countr_zero(stretch.pending)];
        stretch.pending &= stretch.pending - 1;
        step.run(stretch);
        if (step.compactsAfter && stretch.hasBlanks) stretch.compact();
        if (hasGraphFunctions && (takingGraphFunctions & maskOf(step.step)) != 0) findStepsBehind(stretch, step.step);
    }
}

}  // namespace

// Two numbers never come to stand side by side where values and cells that stand between them alternate: an operator
// leaves one value in the place of two, and what no step knows stays. All other stretches have the implicit products.
void findSteps(Stretch &stretch) {
    StepMask steps = 0;
    bool alternates = true;
    bool wasValue = false;
    for (int i = stretch.first; i < stretch.end(); i++) {
        const ProgramCell &cell = stretch.cells[i];
        bool isValue = cell.kind == CellKind::number;
        bool standsBetween = cell.kind == CellKind::string;
        if (cell.kind == CellKind::token) {
            const TokenFacts &facts = factsOf(cell);
            steps |= facts.steps;
            isValue = facts.variable != nullptr;
            standsBetween = facts.standsBetween;
        } else if (cell.kind == CellKind::number) {
            if (machine.numberBase != decimalBase) steps |= maskOf(Step::baseNumbers);
        } else if (cell.kind == CellKind::blank) {
            stretch.hasBlanks = true;
        }
        if (isValue == standsBetween || (i > stretch.first && isValue == wasValue)) alternates = false;
        wasValue = isValue;
    }
    if (!alternates) steps |= products;
    stretch.pending = steps;
}

void evaluate(ProgramCell *cells, int first, int &count) {
    pace(paceUnits::evaluation);
    if (count <= 0) return;
    Stretch stretch{cells, first, count};
    if (evaluateWithoutShortcuts) {
        runPlainly(stretch);
        return;
    }
    findSteps(stretch);
    runPending(stretch);
}

void evaluateSubrange(ProgramCell *cells, int outerFirst, int low, int high, int &outerCount) {
    int count = high - low + 1;
    evaluate(cells, low, count);
    blankCells(cells, low + (count > 0 ? count : 0), high + 1);
    compactCells(cells, outerFirst, outerCount);
}

void evaluateWithin(Stretch &stretch, int low, int high) {
    evaluateSubrange(stretch.cells, stretch.first, low, high, stretch.count);
    stretch.hasBlanks = false;
}

}  // namespace numalink
