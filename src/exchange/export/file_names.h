// Names of items as names of files. Any thread; no state.
#pragma once

#include <string>
#include <string_view>

namespace numalink {

// A name, in UTF-8, as every system takes it for a file's: without what separates, hides or is reserved.
std::string safeFileName(std::string_view name);

}  // namespace numalink
