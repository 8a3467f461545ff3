// What a message must have at least.
#pragma once

#include <nlohmann/json.hpp>

namespace numalink {

// Whether found has all that expected has; arrays by their places.
inline bool hasAll(const nlohmann::json &expected, const nlohmann::json &found) {
    if (expected.is_object() && found.is_object()) {
        for (const auto &[key, value] : expected.items())
            if (!found.contains(key) || !hasAll(value, found[key])) return false;
        return true;
    }
    if (!expected.is_array() || !found.is_array()) return expected == found;
    for (std::size_t i = 0; i < expected.size(); i++)
        if (i >= found.size() || !hasAll(expected[i], found[i])) return false;
    return true;
}

}  // namespace numalink
