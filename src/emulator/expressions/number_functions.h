// Functions of numbers: combinations, powers of e and 10, rounding, coordinates, units, bits. Run thread.
#pragma once

#include <span>

#include "emulator/expressions/operators.h"

namespace numalink {

std::span<const OperatorRow> numberRows();

}  // namespace numalink
