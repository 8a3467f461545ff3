// The stored functions f1 to f6 in an expression.
#include <algorithm>

#include "emulator/expressions/evaluator.h"
#include "emulator/machine/errors.h"
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

}  // namespace numalink
