// Functions of statistics: estimates and the normal distribution. Run thread.
#pragma once

#include <span>

#include "emulator/expressions/operators.h"

namespace numalink {

std::span<const OperatorRow> statisticsRows();

}  // namespace numalink
