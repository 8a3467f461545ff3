// The stretch that one call of evaluate works on, and its steps. Only the evaluator's files include this.
#pragma once

#include "emulator/expressions/operators.h"

namespace numalink {

struct Stretch {
    ProgramCell *cells = nullptr;
    int first = 0;
    int &count;              // falls as cells go
    StepMask pending = 0;    // the steps that still have to walk
    bool hasBlanks = false;  // cells wait to be compacted

    int end() const { return first + count; }
    void blank(int i) {
        makeBlank(cells[i]);
        hasBlanks = true;
    }
    void compact() {
        compactCells(cells, first, count);
        hasBlanks = false;
    }
    // The cell at i, or a blank one of value 0 where i lies outside of the stretch.
    const ProgramCell &cellOrNothing(int i) const;
};

// Evaluates the cells low to high of the stretch and compacts it around the result.
void evaluateWithin(Stretch &stretch, int low, int high);

void readBaseNumbers(Stretch &stretch);
void closeQuotedCalls(Stretch &stretch);
void resolveArrays(Stretch &stretch);
void resolveSubscripts(Stretch &stretch);
void makeLiterals(Stretch &stretch);
void closeParentheses(Stretch &stretch);

void multiplyNeighbours(Stretch &stretch);
void readVariables(Stretch &stretch);
void callGraphFunctions(Stretch &stretch);
void takeInputs(Stretch &stretch);
void applyComplexPrefixes(Stretch &stretch);
void applyPostfixes(Stretch &stretch);
void applyPowers(Stretch &stretch);
void applyPrefixes(Stretch &stretch);
void applySigns(Stretch &stretch);
template <Step step>
void applyBinary(Stretch &stretch);  // combination, multiplication, addition, relation, logicalAnd, logicalOr
void clearLonePoint(Stretch &stretch);

// A result in another base than ten: without its fraction. Ma  ERROR beyond the bits of the base.
ComplexValue heldToBase(ComplexValue result);

// The steps that have something to do at the cells of the stretch, and whether it holds blanks.
void findSteps(Stretch &stretch);

}  // namespace numalink
