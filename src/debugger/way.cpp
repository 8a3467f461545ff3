#include "debugger/way.h"

#include <algorithm>
#include <atomic>

namespace numalink {

namespace {

std::uint64_t begin = 0, end = 0;  // the run thread's
std::atomic<DebugWay::Sort> sortNow = DebugWay::Sort::none;
std::atomic<int> percent = 0;

std::uint64_t distance(std::uint64_t one, std::uint64_t other) { return std::max(one, other) - std::min(one, other); }

}  // namespace

void wayBegins(DebugWay::Sort sort, std::uint64_t from, std::uint64_t to) {
    begin = from;
    end = to;
    percent = 0;
    sortNow = sort;
}

void wayAt(std::uint64_t statement) {
    const std::uint64_t whole = std::max<std::uint64_t>(distance(begin, end), 1);
    percent = static_cast<int>(std::min<std::uint64_t>(distance(begin, statement) * 100 / whole, 100));
}

void wayEnds() { sortNow = DebugWay::Sort::none; }

DebugWay debugWay() { return {sortNow, percent}; }

}  // namespace numalink
