// Functions that take an expression: derivatives, integrals, sums, roots, extremes. Run thread.
#pragma once

#include <span>

#include "emulator/expressions/operators.h"

namespace numalink {

std::span<const OperatorRow> calculusRows();

}  // namespace numalink
