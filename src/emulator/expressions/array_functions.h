// The functions that take or make an array, a group of rows for each file. Run thread.
#pragma once

#include <span>

#include "emulator/expressions/operators.h"

namespace numalink {

std::span<const OperatorRow> arrayRows();   // making and joining arrays
std::span<const OperatorRow> listRows();    // what a list comes to
std::span<const OperatorRow> matrixRows();  // what a matrix comes to

}  // namespace numalink
