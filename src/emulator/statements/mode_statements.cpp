// The statements that set a mode of the machine.
#include "emulator/expressions/evaluator.h"
#include "emulator/machine/errors.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

constexpr std::uint8_t norm = 0xD9, deg = 0xDA, rad = 0xDB, gra = 0xDC, eng = 0xDD;
constexpr int digitLimit = 9;

template <NumberForm form>
WayOut runFormat(RunState &state) {
    evaluateRest(state);
    expectShape(state, 2, "n");
    const int digits = hasCell(state, 1) ? cutToInteger(numberAt(state, 1)) : 0;
    if (digits < 0 || digits > digitLimit) {
        argError();
    } else {
        machine.format.form = form;
        machine.format.digits = digits;
    }
    return handled(state);
}

template <int base>
WayOut runBase(RunState &state) {
    expectAlone(state);
    machine.numberBase = base;
    return handled(state);
}

constexpr StatementRow rows[] = {
    one({0xD4}, runBase<decimalBase>),               // Dec
    one({0xD5}, runBase<16>),                        // Hex
    one({0xD6}, runBase<2>),                         // Bin
    one({0xD7}, runBase<8>),                         // Oct
    one({0xE3}, runFormat<NumberForm::fixed>),       // Fix
    one({0xE4}, runFormat<NumberForm::scientific>),  // Sci
};

}  // namespace

std::span<const StatementRow> modeStatements() { return rows; }

namespace {

constexpr int exponentOfNorm1 = -2, exponentOfNorm2 = -9;

// Norm 1 or Norm 2, or the other of the two with nothing behind it.
void runNorm(RunState &state) {
    evaluateRest(state);
    const NumberFormat before = machine.format;
    const bool wasNorm1 = before.form == NumberForm::normal && before.lowestFixedExponent == exponentOfNorm1;
    int form = wasNorm1 ? 2 : 1;
    if (state.cellCount > 1) {
        expectShape(state, 2, "n");
        form = cutToInteger(numberAt(state, 1));
        if (form != 1 && form != 2) return argError();
    }
    machine.format = {.lowestFixedExponent = form == 1 ? exponentOfNorm1 : exponentOfNorm2,
                      .engineering = before.engineering};
}

}  // namespace

// Norm, Deg, Rad, Gra and Eng; without calculator modes whatever stands behind them. Norm ends Fix and Sci in any case:
// nothing else does.
WayOut runMode(RunState &state) {
    const std::uint8_t mode = state.statement[0].token1;
    if (mode == norm && !machine.calculatorModes) machine.format = {};
    if (machine.calculatorModes) {
        if (mode == norm) runNorm(state);
        if (mode == eng) machine.format.engineering = !machine.format.engineering;
        if (mode == deg) machine.angleUnit = AngleUnit::degrees;
        if (mode == rad) machine.angleUnit = AngleUnit::radians;
        if (mode == gra) machine.angleUnit = AngleUnit::gradians;
    }
    return handled(state);
}

}  // namespace numalink
