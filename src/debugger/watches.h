// Expressions of the calculator's own language, evaluated beside a stopped run without a trace in the machine:
// temporaries, reports, the sequence of Ran#, keys, screens and variables are as before. An endless one gives up.
#pragma once

#include <string>
#include <vector>

#include "debugger/values.h"

namespace numalink {

// An expression as cells, once read. Its cells point into itself: it is moved, never copied.
struct WatchExpression {
    std::vector<ProgramCell> cells, stringCells;
    std::string fault;  // what can't be read, UTF-8; empty: it can
};
// Of a text as it is typed into a program (UTF-8, with all of auto-correct). Any thread once the tables are loaded.
WatchExpression readWatch(const std::string &text);

struct WatchValue {
    enum class Sort { number, text, array, error };
    Sort sort = Sort::error;
    ComplexValue number;
    std::string text;           // of text; of an error what it is: "Syn ERROR"; in the user's language where it is ours
    bool isLasting = false;     // the error comes whatever the machine holds
    int columns = 0, rows = 0;  // of an array
    bool isList = false;
    std::vector<double> elements;  // row by row
};
// On the run thread within the observer, or while the run is stopped on the thread of the commands.
WatchValue evaluateWatch(const WatchExpression &expression);

ValueText watchText(const WatchValue &value);

}  // namespace numalink
