// Texts without regard to the case of A to Z; every other byte counts as it is. The one rule by which names compare.
// Any thread; no state.
#pragma once

#include <string>
#include <string_view>

namespace numalink {

std::string foldCase(std::string_view text);  // A to Z become a to z
bool equalWithoutCase(std::string_view a, std::string_view b);
bool startsWithoutCase(std::string_view text, std::string_view prefix);

}  // namespace numalink
