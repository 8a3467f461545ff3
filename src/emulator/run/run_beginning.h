// What a run begins with that the run before has left: machineStart doesn't touch it, since calculators keep it too.
// With no run on, by who starts one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace numalink {

struct RunBeginning {
    std::uint32_t random = 0;  // where Ran# goes on
    // Ans, view window, its memories, the last two points, in the order of the machine: those that aren't 0.
    std::vector<std::pair<std::size_t, double>> values;
    friend bool operator==(const RunBeginning &, const RunBeginning &) = default;
};

inline constexpr std::size_t beginningValueCount = 2 * (1 + 9 + 6 * 9) + 4;

RunBeginning beginning();
// Behind machineStart. Values of no such place are passed over.
void beginAs(const RunBeginning &wanted);

}  // namespace numalink
