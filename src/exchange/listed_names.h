// Names of items in one message.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace numalink {

inline constexpr std::size_t namesListed = 10;

// "A, B, C"; of more than ten the first ten and their number.
inline std::string listOfNames(const std::vector<std::string> &names) {
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), namesListed); i++) list += (i == 0 ? "" : ", ") + names[i];
    return names.size() > namesListed ? list + " ... (" + std::to_string(names.size()) + ")" : list;
}

}  // namespace numalink
