// A surface as lines of text, for terminals. Any thread; no state.
#pragma once

#include <string>

#include "platform/surface.h"

namespace numalink {

// UTF-8, two rows of dots a line: blank, upper, lower or both halves of a block where dots aren't background.
std::string dotText(const Surface &surface);

}  // namespace numalink
