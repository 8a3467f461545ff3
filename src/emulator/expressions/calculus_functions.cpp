// The functions that evaluate an expression many times over. They don't nest, as on the calculators, and a stop ends
// them.
#include "emulator/expressions/calculus_functions.h"

#include <cmath>

#include "emulator/expressions/calculus.h"
#include "emulator/expressions/calls.h"
#include "emulator/expressions/sampled_function.h"
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
    // NOLINTNEXTLINE(cert-flp30-c): the language's own steps
    for (double place = start.re; step.re > 0 ? place <= end.re : place >= end.re; place += step.re) {
        if (!takeWork()) break;
        *variable = complexReal(place);
        if (!fieldValue(fields[0], term)) return numberCell({});
        sum = complexMake(sum.re + term.re, sum.im + term.im);
        if (place + step.re == place) break;
    }
    return isFinite(sum) ? numberCell(sum) : refusedCall(maError);
}

// What a call gives: the numbers behind its expression are as many as told, others in the places of optional ones.
struct CalculusCall {
    int least = 0, most = 0;  // numbers
    int accuracyAt = 0;       // the place of the accuracy asked for, from 0: the best is given whatever it is
    double accuracyLimit = 0;
    CalculusResult (*compute)(const RealFunction &function, const double *numbers) = nullptr;
    bool givesPlace = false, givesPair = false;
};

constexpr double farAway = 1e99;
constexpr int numberLimit = 3;

// Expression of X, then numbers.
template <const CalculusCall &sort>
ProgramCell computed(const CallArguments &arguments) {
    CallField fields[1 + numberLimit];
    const int count = splitFields(arguments, fields) - 1;
    if (isRunning || count < sort.least || count > sort.most) return refusedCall(synError);
    double numbers[numberLimit] = {0, -farAway, farAway};
    for (int i = 0; i < count; i++) {
        ComplexValue value;
        if (!fieldValue(fields[i + 1], value)) return numberCell({});
        numbers[i] = value.re;
        if (!isFinite(value)) return refusedCall(maError);
    }
    const bool hasAccuracy = sort.accuracyAt > 0 && count > sort.accuracyAt;
    const double accuracy = hasAccuracy ? numbers[sort.accuracyAt] : 1;
    if (accuracy <= 0 || accuracy > sort.accuracyLimit) return refusedCall(argError);
    SampledFunction function(fields[0], &machine.variables['X' - 'A']);
    const OneAtATime running(&machine.variables['X' - 'A']);
    const CalculusResult result = sort.compute([&function](double x, double &y) { return function.at(x, y); }, numbers);
    if (result.end == CalculusEnd::stopped || function.tellIfNowhere()) return numberCell({});
    const double value = sort.givesPlace ? result.x : result.y;
    if (result.end == CalculusEnd::none || !isFinite(complexReal(value))) return refusedCall(maError);
    return sort.givesPair ? listOfTwo(result.x, result.y) : numberCell(complexReal(value));
}

CalculusResult lowest(const RealFunction &function, const double *numbers) {
    return numbers[0] < numbers[1] ? minimum(function, numbers[0], numbers[1]) : CalculusResult{};
}

CalculusResult highest(const RealFunction &function, const double *numbers) {
    const RealFunction upsideDown = [&function](double x, double &y) {
        const bool goesOn = function(x, y);
        y = -y;
        return goesOn;
    };
    CalculusResult result = lowest(upsideDown, numbers);
    result.y = -result.y;
    return result;
}

constexpr double anyAccuracy = largestResult, digitsOfExtremes = 9;
constexpr CalculusCall firstDerivative = {
    1, 2, 1, anyAccuracy, [](const RealFunction &function, const double *n) { return derivative(function, n[0]); }};
constexpr CalculusCall secondDerivativeCall = {1, 2, 1, anyAccuracy, [](const RealFunction &function, const double *n) {
                                                   return secondDerivative(function, n[0]);
                                               }};
constexpr CalculusCall integralCall = {
    2, 3, 2, anyAccuracy, [](const RealFunction &function, const double *n) { return integral(function, n[0], n[1]); }};
constexpr CalculusCall solution = {
    .least = 1,
    .most = 3,
    .accuracyLimit = anyAccuracy,
    .compute = [](const RealFunction &function, const double *n) { return root(function, n[0], n[1], n[2]); },
    .givesPlace = true};
constexpr CalculusCall lowestPoint = {2, 3, 2, digitsOfExtremes, lowest, false, true};
constexpr CalculusCall highestPoint = {2, 3, 2, digitsOfExtremes, highest, false, true};

constexpr OperatorRow rows[] = {
    quotedCall({0x7F, 0x26}, "d/dx", computed<firstDerivative>),
    quotedCall({0x7F, 0x27}, "d2/dx2", computed<secondDerivativeCall>),
    quotedCall({0x7F, 0x28}, "Solve", computed<solution>),
    quotedCall({0x7F, 0x29}, "sum", sumOf),
    quotedCall({0x7F, 0x2A}, "FMin", computed<lowestPoint>),
    quotedCall({0x7F, 0x2B}, "FMax", computed<highestPoint>),
    quotedCall({0x8D}, "integral", computed<integralCall>),
};
static_assert(stepsRise(rows));

}  // namespace

std::span<const OperatorRow> calculusRows() { return rows; }

}  // namespace numalink
