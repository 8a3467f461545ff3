// Any bytes as two programs: each line is in one row, and taking every difference over makes one of the other.
#include <algorithm>

#include "calculator/program_info.h"
#include "compare/program_compare.h"
#include "fuzz/require.h"
#include "text/token_table.h"

namespace {

using namespace numalink;

void requireRows(const ProgramComparison &comparison) {
    std::ptrdiff_t left = 0, right = 0;
    for (const CompareRow &row : comparison.rows) {
        if (row.left >= 0) require(row.left == left++);
        if (row.right >= 0) require(row.right == right++);
        if (row.kind == RowKind::same)
            require(comparison.left[static_cast<std::size_t>(row.left)] ==
                    comparison.right[static_cast<std::size_t>(row.right)]);
        for (const MarkedText &mark : row.leftMarks)
            require(mark.from + mark.size <= comparison.left[static_cast<std::size_t>(row.left)].text.size());
    }
    require(left == std::ssize(comparison.left) && right == std::ssize(comparison.right));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool loaded = tokenTableLoad();
    if (!loaded || size < 2) return 0;
    const std::size_t split = 1 + data[0] % (size - 1);
    Bytes left(data + 1, data + split);
    const Bytes right(data + split, data + size);
    // Lines may find other partners after a step, and part a difference in two; more of them are alike each time.
    const std::size_t limit = comparePrograms(left, right).rows.size();
    for (std::size_t steps = 0; steps <= limit; steps++) {
        const ProgramComparison comparison = comparePrograms(left, right);
        requireRows(comparison);
        if (comparison.differences.empty()) return 0;
        require(takeOver(comparison, comparison.differences.size() - 1, CompareSide::left, left).empty());
    }
    // A prefix without its second byte, or an end mark inside, means something else beside other lines.
    const auto joins = [](std::uint8_t byte) { return isTokenPrefix(byte) || byte == 0 || byte == 0xFF; };
    const bool isPlain = std::none_of(data + 1, data + size, joins);
    require(!isPlain || comparePrograms(left, right).differences.empty());
    return 0;
}
