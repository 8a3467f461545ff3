#include "emulator/expressions/sampled_function.h"

#include <limits>

#include "emulator/machine/errors.h"
#include "emulator/machine/run_waits.h"

namespace numalink {

SampledFunction::SampledFunction(const CallField &written, ComplexValue *place)
    : formula(written), variable(place), before(*place) {}

SampledFunction::~SampledFunction() { *variable = before; }

bool SampledFunction::at(double x, double &y) {
    if (!takeWork() || machine.exhausted) return false;
    last = x;
    *variable = complexReal(x);
    int reports = 0;
    int *const counted = reportsCounted;
    reportsCounted = &reports;
    ComplexValue value;
    fieldValue(formula, value);
    reportsCounted = counted;
    y = reports > 0 ? std::numeric_limits<double>::quiet_NaN() : value.re;
    (reports > 0 ? hasReports : hasValues) = true;
    return runGoesOn();
}

bool SampledFunction::tellIfNowhere() {
    if (hasValues || !hasReports) return false;
    *variable = complexReal(last);
    ComplexValue value;
    fieldValue(formula, value);
    return true;
}

}  // namespace numalink
