// A run's programs as texts with places in them, for editors: lines of statements with a colon in between, columns in
// characters from 1. While a run is loaded; any thread.
#pragma once

#include <string>

#include "debugger/places.h"

namespace numalink {

std::string sourceText(int program);  // UTF-8
int columnOf(int program, int line, int statement);
int statementAtColumn(int program, int line, int column);  // from 0

}  // namespace numalink
