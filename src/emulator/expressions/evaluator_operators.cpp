// The steps that act on single cells and their neighbours: values, prefixes, postfixes, binary operators and the
// implicit product. Each walks in its own direction and leaves its result in its own place; both are the language's
// associativity.
#include "emulator/expressions/array_arithmetic.h"
#include "emulator/expressions/complex_math.h"
#include "emulator/expressions/evaluator.h"
#include "emulator/expressions/evaluator_steps.h"
#include "emulator/expressions/recording.h"
#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/machine/named_values.h"

namespace numalink {

namespace {

ComplexValue unaryValue(const OperatorRow &row, ComplexValue operand) {
    return recording == nullptr ? unaryResult(row, operand) : recordUnary(row, operand);
}

ComplexValue binaryValue(const OperatorRow &row, ComplexValue left, ComplexValue right) {
    if (recording != nullptr) return recordBinary(row, left, right);
    const ComplexValue result = binaryResult(row, left, right);
    return machine.numberBase == decimalBase ? result : heldToBase(result);
}

void takeInput(Stretch &stretch, const OperatorRow &row) {
    for (int p = stretch.first; p < stretch.end(); p++) {
        if (operatorRow(stretch.cells[p], Step::inputs) != &row) continue;
        makeNumber(stretch.cells[p], recording == nullptr ? row.source() : recordSource(row));
    }
}

void applyUnary(ProgramCell &target, const ProgramCell &operand, const OperatorRow &row) {
    if (isNumber(operand)) return makeNumber(target, unaryValue(row, operand.value));
    if (isOperand(operand)) {
        target = changedArray(row, operand);
        return;
    }
    synError();
    makeNumber(target, row.unary(operand.value));
}

void applyPrefixAt(Stretch &stretch, int p, const OperatorRow &row) {
    applyUnary(stretch.cells[p], stretch.cells[p + 1], row);
    stretch.blank(p + 1);
}

// The sign that the cell behind an operator is to what follows it, where the sign's own step comes later: as on the
// calculators. Without calculator modes that is the minus of an exponent alone; all else reports.
const OperatorRow *signBehind(const OperatorRow &row, const ProgramCell &cell) {
    if (!machine.calculatorModes && !(row.step == Step::power && isToken(cell, token::minus))) return nullptr;
    if (row.step == Step::power && isToken(cell, token::negative)) return operatorRow(cell, Step::prefix);
    return row.step < Step::sign ? signRow(cell) : nullptr;
}

// The place of the right operand of the operator at p; a sign ahead of it has gone into it.
int rightOperandOf(Stretch &stretch, int p, const OperatorRow &row) {
    const OperatorRow *sign = signBehind(row, stretch.cells[p + 1]);
    if (sign == nullptr || !isOperand(stretch.cellOrNothing(p + 2))) return p + 1;
    applyUnary(stretch.cells[p + 2], stretch.cells[p + 2], *sign);
    stretch.blank(p + 1);
    return p + 2;
}

// p may be the first cell: there is then nothing on the left.
void applyBinaryAt(Stretch &stretch, int p, const OperatorRow &row) {
    const ProgramCell &left = stretch.cellOrNothing(p - 1);
    ProgramCell &right = stretch.cells[rightOperandOf(stretch, p, row)];
    if (isNumber(left) && isNumber(right)) {
        makeNumber(right, binaryValue(row, left.value, right.value));
    } else if (isOperand(left) && isOperand(right)) {
        right = combinedArrays(row, left, right);
    } else {
        synError();
        makeNumber(right, row.binary(left.value, right.value));
    }
    if (p > stretch.first) stretch.blank(p - 1);
    stretch.blank(p);
}

// As on the calculators: a fraction binds like a power, and three numbers are a whole one and a fraction.
void applyFractions(Stretch &stretch) {
    const auto isMark = [&](int p) { return isToken(stretch.cellOrNothing(p), token::fractionMark); };
    const auto hasNumber = [&](int p) { return isNumber(stretch.cellOrNothing(p)); };
    for (int p = stretch.first + 1; p < stretch.end() - 1; p++) {
        if (!isMark(p) || !hasNumber(p - 1) || !hasNumber(p + 1) || refusesRecording()) continue;
        const bool isMixed = isMark(p + 2) && hasNumber(p + 3);
        const int last = isMixed ? p + 3 : p + 1;
        const ComplexValue left = stretch.cells[p - 1].value, right = stretch.cells[last].value;
        ComplexValue result = complexDiv(isMixed ? stretch.cells[p + 1].value : left, right);
        if (isMixed) result = complexAdd(left, result);
        makeNumber(stretch.cells[last], result);
        for (int i = p - 1; i < last; i++) stretch.blank(i);
        p = last;
    }
    stretch.compact();
}

// Where no binary operator can stand: at either end, beside a comma, or behind another one.
bool isValuePlace(const Stretch &stretch, int p) {
    if (p == stretch.first || p == stretch.end() - 1) return true;
    const ProgramCell &left = stretch.cells[p - 1];
    return isToken(left, token::comma) || isToken(stretch.cells[p + 1], token::comma) ||
           (left.kind == CellKind::token && factsOf(left).standsBetween);
}

// Degrees or hours, minutes and perhaps seconds, each with its mark, in base ten: the first mark stands at p. False
// where it is the mark of an angle by itself.
bool applySexagesimal(Stretch &stretch, int p) {
    const auto isPart = [&](int mark) {
        return isToken(stretch.cellOrNothing(mark), token::degrees) && isNumber(stretch.cellOrNothing(mark - 1));
    };
    if (!isPart(p) || !isPart(p + 2) || refusesRecording()) return false;
    const int last = isPart(p + 4) ? p + 4 : p + 2;
    double value = 0, unit = 1;
    for (int mark = p; mark <= last; mark += 2) {
        value += stretch.cells[mark - 1].value.re / unit;
        unit *= 60;
    }
    makeNumber(stretch.cells[last], complexReal(value));
    for (int i = p - 1; i < last; i++) stretch.blank(i);
    return true;
}

}  // namespace

const ProgramCell &Stretch::cellOrNothing(int i) const {
    static const ProgramCell nothing{};
    return i >= first && i < end() ? cells[i] : nothing;
}

void multiplyNeighbours(Stretch &stretch) {
    for (int p = stretch.first + 1; p < stretch.end(); p++) {
        const ProgramCell &left = stretch.cells[p - 1];
        ProgramCell &right = stretch.cells[p];
        if (isNumber(left) && isNumber(right)) {
            right.value =
                recording == nullptr ? complexMul(left.value, right.value) : recordProduct(left.value, right.value);
        } else if (isOperand(left) && isOperand(right)) {
            right = productOfNeighbours(left, right);
        } else {
            continue;
        }
        stretch.blank(p - 1);
    }
}

void readVariables(Stretch &stretch) {
    for (int p = stretch.first; p < stretch.end(); p++) {
        ProgramCell &cell = stretch.cells[p];
        if (cell.kind != CellKind::token) continue;
        const ComplexValue *variable = factsOf(cell).variable;
        if (variable == nullptr && isToken(cell, token::mode) && isValuePlace(stretch, p))
            variable = &namedValue(token::mode);
        if (variable != nullptr) makeNumber(cell, recording == nullptr ? *variable : recordVariable(variable));
    }
}

void callGraphFunctions(Stretch &stretch) {
    constexpr std::uint8_t beforeFirst = 0x13;
    for (int p = stretch.first; p < stretch.end(); p++) {
        ProgramCell &cell = stretch.cells[p];
        const FunctionName name = functionNameOf(cell);
        if (name != FunctionName::none && isNumber(stretch.cellOrNothing(p + 1))) {
            if (refusesRecording()) return;
            cell = evaluateFunctionOfGraphs(name, stretch.cells[p + 1].value.re);
            stretch.blank(p + 1);
            stretch.compact();
            continue;
        }
        if (cell.kind != CellKind::token || cell.token1 <= beforeFirst || cell.token1 > beforeFirst + 6) continue;
        if (refusesRecording()) return;
        cell = evaluateGraphFunction(cell.token1 - beforeFirst);
    }
}

void takeInputs(Stretch &stretch) {
    for (const OperatorGroup group : operatorGroups()) {
        for (const OperatorRow &row : group()) {
            if (row.step > Step::inputs) break;
            takeInput(stretch, row);
        }
    }
}

void applyComplexPrefixes(Stretch &stretch) {
    for (int p = stretch.first; p < stretch.end() - 1; p++) {
        if (const OperatorRow *row = operatorRow(stretch.cells[p], Step::complexPrefix))
            applyPrefixAt(stretch, p, *row);
    }
}

void applyPostfixes(Stretch &stretch) {
    for (int p = stretch.first + 1; p < stretch.end(); p++) {
        const OperatorRow *row = operatorRow(stretch.cells[p], Step::postfix);
        if (row == nullptr || applySexagesimal(stretch, p)) continue;
        applyUnary(stretch.cells[p], stretch.cells[p - 1], *row);
        stretch.blank(p - 1);
    }
}

void applyPowers(Stretch &stretch) {
    if (machine.calculatorModes) applyFractions(stretch);
    for (int p = stretch.first; p < stretch.end() - 1; p++) {
        if (const OperatorRow *row = operatorRow(stretch.cells[p], Step::power)) applyBinaryAt(stretch, p, *row);
    }
}

void applyPrefixes(Stretch &stretch) {
    for (int p = stretch.end() - 2; p >= stretch.first; p--) {
        const OperatorRow *row = operatorRow(stretch.cells[p], Step::prefix);
        if (row == nullptr) continue;
        if (row->onArrays != nullptr) {
            if (refusesRecording()) return;
            row->onArrays(stretch.cells, p);
            stretch.compact();
        } else {
            applyPrefixAt(stretch, p, *row);
        }
    }
}

void applySigns(Stretch &stretch) {
    for (int p = stretch.end() - 2; p >= stretch.first; p--) {
        const OperatorRow *row = signRow(stretch.cells[p]);
        if (row == nullptr || (p > stretch.first && isOperand(stretch.cells[p - 1]))) continue;
        applyPrefixAt(stretch, p, *row);
    }
}

template <Step step>
void applyBinary(Stretch &stretch) {
    for (int p = stretch.first + 1; p < stretch.end() - 1; p++) {
        if (const OperatorRow *row = operatorRow(stretch.cells[p], step)) applyBinaryAt(stretch, p, *row);
    }
}
template void applyBinary<Step::combination>(Stretch &stretch);
template void applyBinary<Step::multiplication>(Stretch &stretch);
template void applyBinary<Step::addition>(Stretch &stretch);
template void applyBinary<Step::relation>(Stretch &stretch);
template void applyBinary<Step::logicalAnd>(Stretch &stretch);
template void applyBinary<Step::logicalOr>(Stretch &stretch);

void clearLonePoint(Stretch &stretch) {
    ProgramCell *const cells = stretch.cells + stretch.first;
    if (stretch.count != 2 || !isToken(cells[0], token::point) || refusesRecording()) return;
    cells[0] = cells[1];
    stretch.count = 1;
    if (isNumber(cells[0])) cells[0].value = {};
    if (isArray(cells[0])) matrixFill(0, cells[0].matrix);
}

}  // namespace numalink
