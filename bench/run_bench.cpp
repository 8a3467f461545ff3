// How fast programs run at full speed, beside the interpreters that Debian has, in one run and in processor time, so
// that a busy machine doesn't bend the ratios. ours_over_theirs below 1: we are ahead.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <map>

#include "bench/contest_runs.h"
#include "emulator/machine/machine.h"
#include "emulator/run/runner.h"
#include "emulator/run/scripted_run.h"

namespace numalink {

namespace {

constexpr std::size_t variableX = 'X' - 'A';

bool runContest(const Contest &contest, int passes) {
    const RunReport report = runScripted({}, [&] { return loadContest(contest, passes); });
    return report.ended == RunEnd::end && report.errors.empty();
}

// Of the processor, a pass; the rivals come after ours.
std::map<const Contest *, double> ourNanoseconds;
std::map<Rival, std::pair<double, int>> logarithms;  // of the ratios: their sum and number

void ours(benchmark::State &state, const Contest *running) {
    const Contest &contest = *running;
    prepareContests();
    const double before = processorSeconds(RUSAGE_SELF);
    for (auto unused : state) {
        if (!runContest(contest, contest.passes)) state.SkipWithError("the program didn't run to its end");
    }
    const double used = processorSeconds(RUSAGE_SELF) - before;
    ourNanoseconds[&contest] = used * 1e9 / static_cast<double>(state.iterations() * contest.passes);
    state.counters["ns_a_pass"] = ourNanoseconds[&contest];
}

void theirs(benchmark::State &state, const Contest *running, Rival rival) {
    const Contest &contest = *running;
    prepareContests();
    const int passes = rivalPasses(contest, rival);
    runContest(contest, passes);
    const double expected = machine.variables[variableX].re;
    runContest(contest, 1);
    const double startUp = rivalSeconds(contest, rival, 1, machine.variables[variableX].re);
    const double seconds = rivalSeconds(contest, rival, passes, expected);
    for (auto unused : state) state.SetIterationTime(std::max(seconds, 1e-9));
    if (startUp < 0 || seconds < 0) {
        state.SkipWithError("it isn't installed, can't say it, or came to another result");
        return;
    }
    const double nanoseconds = std::max(seconds - startUp, 1e-9) * 1e9 / passes;
    const double ratio = ourNanoseconds[&contest] / nanoseconds;
    state.counters["ns_a_pass"] = nanoseconds;
    state.counters["ours_over_theirs"] = ratio;
    logarithms[rival].first += std::log(ratio);
    logarithms[rival].second++;
}

}  // namespace

}  // namespace numalink

int main(int argc, char **argv) {
    using namespace numalink;
    benchmark::Initialize(&argc, argv);
    for (const Contest &contest : contests()) {
        const std::string name = contest.name;
        benchmark::RegisterBenchmark((name + "/ours").c_str(), ours, &contest)->Unit(benchmark::kMillisecond);
        for (int rival = 0; rival < rivalCount; rival++) {
            benchmark::RegisterBenchmark((name + "/" + rivalNames[rival]).c_str(), theirs, &contest,
                                         static_cast<Rival>(rival))
                ->Unit(benchmark::kMillisecond)
                ->UseManualTime()
                ->Iterations(1);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    for (const auto &[rival, sum] : logarithms)
        std::printf("geometric mean of ours over %s, %d programs: %.3f\n", rivalNames[rival], sum.second,
                    std::exp(sum.first / sum.second));
    return 0;
}
