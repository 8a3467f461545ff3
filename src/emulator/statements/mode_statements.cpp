// The statements that set a mode of the machine.
#include "emulator/expressions/evaluator.h"
#include "emulator/machine/errors.h"
#include "emulator/statements/statement_groups.h"

namespace numalink {

namespace {

constexpr std::uint8_t norm = 0xD9, deg = 0xDA, rad = 0xDB, gra = 0xDC;
constexpr int digitLimit = 9;

template <NumberForm form>
WayOut runFormat(RunState &state) {
    evaluateRest(state);
    expectShape(state, 2, "n");
    const int digits = hasCell(state, 1) ? cutToInteger(numberAt(state, 1)) : 0;
    if (digits < 0 || digits > digitLimit) {
        argError();
    } else {
        machine.format = {form, digits};
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

// Norm, Deg, Rad, Gra and Eng, whatever stands behind them. Norm ends Fix and Sci in any case: nothing else does.
WayOut runMode(RunState &state) {
    const std::uint8_t mode = state.statement[0].token1;
    if (mode == norm) machine.format = {};
    if (machine.calculatorModes) {
        if (mode == deg) machine.angleUnit = AngleUnit::degrees;
        if (mode == rad) machine.angleUnit = AngleUnit::radians;
        if (mode == gra) machine.angleUnit = AngleUnit::gradians;
    }
    return handled(state);
}

}  // namespace numalink
