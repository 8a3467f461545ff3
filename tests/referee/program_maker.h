// Random programs of the calculators' language as token bytes: mostly of a sound shape, so that they get somewhere, and
// now and then with a token that doesn't belong. The same seed gives the same programs.
#pragma once

#include <random>

#include "platform/bytes.h"

namespace numalink {

using Random = std::mt19937_64;

// The programs of one run, the one that is run first.
std::vector<Bytes> madePrograms(Random &random);
// One that consists of expressions alone, a statement each.
std::vector<Bytes> madeExpressions(Random &random);
// The programs with bytes changed, moved, doubled and left out.
std::vector<Bytes> changedPrograms(std::vector<Bytes> programs, Random &random);

}  // namespace numalink
