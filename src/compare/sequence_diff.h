// What two sequences have in common, in order: the base of every comparison. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace numalink {

// Elements that both sides have: count of them, from left and right on.
struct CommonStretch {
    std::size_t left = 0, right = 0, count = 0;
    bool operator==(const CommonStretch &) const = default;
};

// By rising places, none touching the next on both sides. As long as can be where the sides are alike; where they
// differ in very much, not always the longest, so that the time grows with the length alone (some 40 million steps for
// 70,000 elements a side). Memory grows with the length.
std::vector<CommonStretch> commonStretches(std::span<const std::uint32_t> left, std::span<const std::uint32_t> right);

}  // namespace numalink
