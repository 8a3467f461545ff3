// The stored functions in an expression: f1 to f6 of programs, Y1 to Y20 of the graphs.
#include <algorithm>
#include <array>
#include <cmath>

#include "emulator/expressions/calls.h"
#include "emulator/expressions/evaluator.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/graph_memory.h"
#include "emulator/machine/programs.h"
#include "emulator/machine/run_waits.h"

namespace numalink {

namespace {

constexpr int functionCount = 6;

// A function's text as it is evaluated, one array each: none is at work twice at a time.
ProgramCell work[functionCount][statementLimit];
bool active[functionCount];

ProgramCell evaluateText(const LoadedProgram &program, ProgramCell *cells) {
    std::copy_n(program.cells, program.cellCount, cells);
    int count = program.cellCount - 1;  // all but the end mark
    evaluate(cells, 0, count);
    if (count != 1) synError();
    return cells[0];
}

}  // namespace

ProgramCell evaluateGraphFunction(int digit) {
    const ProgramCell zero = numberCell({});
    const int index = findGraphFunction(digit);
    // A stop is looked at here: functions that use each other many times over take long within one statement.
    if (index < 0 || !runGoesOn()) return zero;
    const LoadedProgram &program = loadedProgram(index);
    bool &isActive = active[digit - 1];
    if (isActive || program.cellCount > statementLimit) {
        synError();
        return zero;
    }
    isActive = true;
    const ProgramCell result = evaluateText(program, work[digit - 1]);
    isActive = false;
    return result;
}

ProgramCell evaluateFunctionOfGraphs(FunctionName name, double number) {
    static std::array<bool, graphFunctionCount> busy{};
    const ProgramCell zero = numberCell({});
    const GraphFunction *function = graphFunction(number);
    if (function == nullptr || number != std::floor(number)) return refusedCall(synError);
    const FormulaCells &formula = name == FunctionName::yt ? function->second : function->formula;
    if (!namesType(name, function->type) || formula.empty() || !runGoesOn()) return zero;
    bool &isBusy = busy[static_cast<std::size_t>(function - graphs.functions.data())];
    if (isBusy) return refusedCall(synError);
    isBusy = true;
    FormulaCells cells = formula;
    int count = static_cast<int>(cells.size());
    evaluate(cells.data(), 0, count);
    isBusy = false;
    return count == 1 ? cells[0] : refusedCall(synError);
}

}  // namespace numalink
