#include "emulator/run/run_beginning.h"

#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/machine.h"

namespace numalink {

namespace {

std::vector<double *> places() {
    std::vector<double *> found;
    found.reserve(beginningValueCount);
    const auto add = [&](ComplexValue &value) {
        found.push_back(&value.re);
        found.push_back(&value.im);
    };
    add(machine.ans);
    for (ComplexValue &value : machine.window) add(value);
    for (ViewWindow &memory : machine.windowMemories)
        for (ComplexValue &value : memory) add(value);
    for (PlotPoint *point : {&machine.plotPrevious, &machine.plotCurrent}) {
        found.push_back(&point->x);
        found.push_back(&point->y);
    }
    return found;
}

static_assert(beginningValueCount == 2 * (1 + windowValueCount + memoryCount * windowValueCount) + 4);

}  // namespace

RunBeginning beginning() {
    RunBeginning now{.random = randomPlace(), .values = {}};
    const std::vector<double *> all = places();
    for (std::size_t i = 0; i < all.size(); i++)
        if (*all[i] != 0) now.values.emplace_back(i, *all[i]);
    return now;
}

void beginAs(const RunBeginning &wanted) {
    randomGoOn(wanted.random);
    const std::vector<double *> all = places();
    for (double *value : all) *value = 0;
    for (const auto &[place, value] : wanted.values)
        if (place < all.size()) *all[place] = value;
}

}  // namespace numalink
