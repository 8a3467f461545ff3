// How a page that plays a program is told from others, and where in it the items stand.
#pragma once

#include <string_view>

namespace numalink {

inline constexpr std::string_view pageStart = "<!DOCTYPE html>\n<!-- Numalink page 1 -->";
inline constexpr std::string_view pageItemsHead = R"(<script type="application/x-numalink-items" id="items">)";
inline constexpr std::string_view pageItemsEnd = "</script>";

}  // namespace numalink
