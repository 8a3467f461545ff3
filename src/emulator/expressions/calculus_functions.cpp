// The functions that evaluate an expression many times over. They don't nest, as on the calculators, and a stop ends
// them.
#include "emulator/expressions/calculus_functions.h"

#include <cmath>

#include "emulator/expressions/calls.h"
#include "emulator/machine/errors.h"
#include "emulator/machine/run_waits.h"

namespace numalink {

namespace {

bool isRunning = false;  // one of them; run thread

// Its variable keeps the value from before the call.
class OneAtATime {
public:
    explicit OneAtATime(ComplexValue *place) : variable(place), before(*place) { isRunning = true; }
    ~OneAtATime() {
        *variable = before;
        isRunning = false;
    }
    OneAtATime(const OneAtATime &) = delete;
    OneAtATime &operator=(const OneAtATime &) = delete;

private:
    ComplexValue *variable;
    ComplexValue before;
};

bool isFinite(ComplexValue value) {
    return std::fabs(value.re) <= largestResult && std::fabs(value.im) <= largestResult;
}

// Sum of expression, variable, start, end and, unless it is 1, step.
ProgramCell sumOf(const CallArguments &arguments) {
    CallField fields[5];
    const int count = splitFields(arguments, fields);
    ComplexValue *variable = fields[1].count == 1 ? variableRef(fields[1].cells[0]) : nullptr;
    if (isRunning || count < 4 || count > 5 || variable == nullptr) return refusedCall(synError);
    ComplexValue start, end, step = complexReal(1);
    if (!fieldValue(fields[2], start) || !fieldValue(fields[3], end)) return numberCell({});
    if (count == 5 && !fieldValue(fields[4], step)) return numberCell({});
    if (!isFinite(start) || !isFinite(end) || step.re == 0 || start.re + step.re == start.re)
        return refusedCall(maError);
    const OneAtATime running(variable);
    ComplexValue sum, term;
    for (double place = start.re; step.re > 0 ? place <= end.re : place >= end.re; place += step.re) {
        if (!takeWork()) break;
        *variable = complexReal(place);
        if (!fieldValue(fields[0], term)) return numberCell({});
        sum = complexMake(sum.re + term.re, sum.im + term.im);
        if (place + step.re == place) break;
    }
    return isFinite(sum) ? numberCell(sum) : refusedCall(maError);
}

constexpr OperatorRow rows[] = {
    quotedCall({0x7F, 0x29}, "sum", sumOf),
};
static_assert(stepsRise(rows));

}  // namespace

std::span<const OperatorRow> calculusRows() { return rows; }

}  // namespace numalink
