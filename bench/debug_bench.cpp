// What it costs to be followed: a run with a record for going back beside a plain one, in processor time, and what the
// record takes; and how long a way back is.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include "bench/contest_runs.h"
#include "debugger/debugger.h"
#include "emulator/machine/machine.h"
#include "emulator/run/scripted_run.h"

namespace numalink {

namespace {

DebugRecord recordAtEnd;
std::uint64_t wayBack = 0;  // statements; 0: none

void onStop() {
    if (debugState() != DebugState::stopped) return;
    recordAtEnd = debugRecord();
    const DebugStop stop = debugStop();
    const std::uint64_t back = std::exchange(wayBack, 0);
    if (back == 0 || !debugGoTo(stop.statement - std::min(stop.statement - stop.oldest, back)))
        debugStep(DebugStep::onward);
}

// A run that reports is none to be measured.
double secondsOf(benchmark::State &state, const Contest &contest, bool records, std::uint64_t back = 0) {
    wayBack = back;
    debugStateChanged = onStop;
    const double before = processorSeconds(RUSAGE_SELF);
    const RunReport report = runScripted({}, [&] {
        if (!loadContest(contest, contest.passes)) return false;
        DebugOptions options;
        options.records = records;
        options.stopAtEnd = records;
        if (records) debugBegin(options);
        return true;
    });
    const double seconds = processorSeconds(RUSAGE_SELF) - before;
    debugForget();
    if (report.ended != RunEnd::end || !report.errors.empty()) state.SkipWithError("the run doesn't come to its end");
    return seconds;
}

void recording(benchmark::State &state, const Contest *contest) {
    prepareContests();
    double plain = 0, recorded = 0;
    for (auto unused : state) {
        plain += secondsOf(state, *contest, false);
        recorded += secondsOf(state, *contest, true);
    }
    state.counters["recorded_over_plain"] = recorded / plain;
    state.counters["statements"] = static_cast<double>(machine.statementsRun);
    state.counters["bytes_a_statement"] = static_cast<double>(recordAtEnd.bytes) /
                                          static_cast<double>(std::max<std::uint64_t>(recordAtEnd.statements, 1));
    state.counters["megabytes"] = static_cast<double>(recordAtEnd.bytes) / 1e6;
    state.counters["images"] = static_cast<double>(recordAtEnd.keyframes);
}

// Arrays, pictures and a list that change all the time, for longer than is kept. What a process takes at its peak is
// that of the greedier run, so that each of the two is to be asked for alone.
const Contest filler = {.name = "filler",
                        .words =
                            "{200,200}\\->\\Dim \\Mat A:255\\->\\Dim \\List 1:\\For 1\\->K\\To #:\\Int "
                            "(199\\Ran#)+1\\->I:\\Int (199\\Ran#)+1\\->J:\\Ran#\\->\\Mat A[I,J]:K\\->\\List "
                            "1[I]:\\PxlOn \\Int (60\\Ran#)+1,\\Int (120\\Ran#)+1:\\StoPict 1:\\StoPict "
                            "2:\\Next:K\\->X",
                        .subprogram = nullptr,
                        .passes = 150000,
                        .basic = nullptr,
                        .basicPasses = {},
                        .python = nullptr,
                        .luaText = nullptr,
                        .scriptPasses = 0};

void peak(benchmark::State &state, bool records) {
    prepareContests();
    for (auto unused : state) state.counters["seconds"] = secondsOf(state, filler, records);
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    state.counters["peak_megabytes"] = static_cast<double>(used.ru_maxrss) / 1024;
    state.counters["statements"] = static_cast<double>(machine.statementsRun);
    if (!records) return;
    state.counters["statements_kept"] = static_cast<double>(recordAtEnd.statements);
    state.counters["record_megabytes"] = static_cast<double>(recordAtEnd.bytes) / 1e6;
    state.counters["images"] = static_cast<double>(recordAtEnd.keyframes);
}

// To a statement and on again to the end, less what the run takes.
void goingBack(benchmark::State &state, const Contest *contest, std::uint64_t back) {
    prepareContests();
    double recorded = 0, withBack = 0;
    for (auto unused : state) {
        recorded += secondsOf(state, *contest, true);
        withBack += secondsOf(state, *contest, true, back);
    }
    state.counters["ms_there_and_back"] = (withBack - recorded) * 1000 / static_cast<double>(state.iterations());
}

}  // namespace

}  // namespace numalink

int main(int argc, char **argv) {
    using namespace numalink;
    benchmark::Initialize(&argc, argv);
    for (const Contest &contest : contests()) {
        const std::string name = contest.name;
        benchmark::RegisterBenchmark((name + "/recording").c_str(), recording, &contest)->Iterations(5);
        benchmark::RegisterBenchmark((name + "/oneBack").c_str(), goingBack, &contest, 1)->Iterations(5);
    }
    benchmark::RegisterBenchmark("filler/peakPlain", peak, false)->Iterations(1);
    benchmark::RegisterBenchmark("filler/peakRecording", peak, true)->Iterations(1);
    benchmark::RegisterBenchmark("filler/tenthBack", goingBack, &filler, 100000)->Iterations(1);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
