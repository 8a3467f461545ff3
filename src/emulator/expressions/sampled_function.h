// A formula as a function of one variable, asked at many places: graphs, tables, integrals, roots. Run thread.
#pragma once

#include "emulator/expressions/calls.h"

namespace numalink {

// The variable has its value from before again when this goes.
class SampledFunction {
public:
    SampledFunction(const CallField &formula, ComplexValue *variable);
    ~SampledFunction();
    SampledFunction(const SampledFunction &) = delete;
    SampledFunction &operator=(const SampledFunction &) = delete;

    // y becomes the real part at x, or what is no number where the formula has none: single places without a value
    // report nothing. False when the run doesn't go on.
    bool at(double x, double &y);

    // The report of the last place if no place has had a value. True if there was one to tell.
    bool tellIfNowhere();

private:
    CallField formula;
    ComplexValue *variable;
    ComplexValue before;
    double last = 0;
    bool hasValues = false, hasReports = false;
};

}  // namespace numalink
