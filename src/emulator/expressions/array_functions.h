// The functions that take or make an array. Run thread.
#pragma once

#include <span>

#include "emulator/expressions/operators.h"

namespace numalink {

std::span<const OperatorRow> arrayRows();

}  // namespace numalink
