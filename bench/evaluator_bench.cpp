// What an expression costs, by the fast way and by every step walked, at full speed.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "emulator/expressions/evaluator.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/pace.h"
#include "emulator/run/machine_start.h"
#include "text/token_table.h"

namespace numalink {
namespace {

std::vector<ProgramCell> cellsOf(std::initializer_list<int> codes) {
    std::vector<ProgramCell> cells;
    for (const int code : codes) {
        cells.push_back(code < 0 ? numberCell(complexReal(-code))
                                 : tokenCell({static_cast<std::uint8_t>(code >> 8), static_cast<std::uint8_t>(code)}));
    }
    return cells;
}
constexpr int one(int code) { return code << 8; }

void prepare() {
    tokenTableLoad();
    fullSpeed = true;
    emulatorRunning = true;
    machineStart();
    machine.listSlots[0][0] = matrixAllocate(ownedByVariable, 1, 30);
}

void evaluateOften(benchmark::State &state, const std::vector<ProgramCell> &cells, bool plainly) {
    prepare();
    evaluateWithoutShortcuts = plainly;
    std::vector<ProgramCell> work(cells.size());
    for (auto _ : state) {
        freeTemporaries();
        std::ranges::copy(cells, work.begin());
        int count = static_cast<int>(work.size());
        evaluate(work.data(), 0, count);
        benchmark::DoNotOptimize(work.data());
    }
    evaluateWithoutShortcuts = false;
}

const auto sum = cellsOf({one('X'), one(0x89), one('I'), one(0xA9), -2});  // X+I*2
const auto relation = cellsOf({one('X'), one(0x3E), -9999});               // X>9999
const auto nested = cellsOf({one(0x28), one('X'), one(0x89), -1, one(0x29), one(0x8B), one(0xB9), one(0x28), one('I'),
                             one(0x99), -2, one(0x29)});                              // (X+1)^2/(I-2)
const auto element = cellsOf({0x7F51, -1, one(0x5B), -2, one(0x5D), one(0x89), -1});  // List 1[2]+1

BENCHMARK_CAPTURE(evaluateOften, sum, sum, false);
BENCHMARK_CAPTURE(evaluateOften, sum_plainly, sum, true);
BENCHMARK_CAPTURE(evaluateOften, relation, relation, false);
BENCHMARK_CAPTURE(evaluateOften, nested, nested, false);
BENCHMARK_CAPTURE(evaluateOften, nested_plainly, nested, true);
BENCHMARK_CAPTURE(evaluateOften, list_element, element, false);

}  // namespace
}  // namespace numalink
