// How many passes of a loop run in a second, at full speed, and the same loop by the interpreters that Debian has.
// Their figures are in processor time, ours too (ns_a_pass), so that a busy machine doesn't bend the ratio.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>

#include "emulator/machine/programs.h"
#include "emulator/run/runner.h"
#include "emulator/run/scripted_run.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace numalink {

namespace {

Bytes imageOf(std::string_view words) {
    Bytes image = {':'};
    tokensFromWords(words, image);
    image.insert(image.end(), {0xFF, 0});
    return image;
}

void runWords(benchmark::State &state, std::string_view words, std::int64_t passes) {
    threadRole = ThreadRole::graphical;
    tokenTableLoad();
    settingsLoad();
    settingsSetInt(setting::fullSpeed, 1);
    settingsSetInt(setting::fillListsMatrices, 0);
    const Bytes image = imageOf(words);
    for (auto unused : state) {
        const RunReport report = runScripted({}, [&] {
            programsClear();
            return programAdd("LOOP", image);
        });
        if (report.ended != RunEnd::end || !report.errors.empty())
            state.SkipWithError("the program didn't run to its end");
    }
    state.SetItemsProcessed(state.iterations() * passes);
}

double processorSeconds(int whose) {
    rusage used{};
    getrusage(whose, &used);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

double loopNanoseconds = 0;  // of the processor, a pass of countingLoop; the rivals come after it

// A pass is four or five statements.
void countingLoop(benchmark::State &state) {
    constexpr std::int64_t passes = 1000000;
    const double before = processorSeconds(RUSAGE_SELF);
    runWords(state, "1000000\\->N:0\\->X:\\For 1\\->I \\To N:X+I*2\\->X:\\If X>9999:\\Then 0\\->X:\\IfEnd:\\Next",
             passes);
    const double used = processorSeconds(RUSAGE_SELF) - before;
    loopNanoseconds = used * 1e9 / static_cast<double>(state.iterations() * passes);
    state.counters["ns_a_pass"] = loopNanoseconds;
}
BENCHMARK(countingLoop)->Unit(benchmark::kMillisecond)->UseRealTime();

struct Rival {
    const char *program;
    const char *head;  // ahead of the count of passes
    const char *loop;  // behind it; prints X
    int passes;
};
constexpr char bwbasicLoop[] = "20 X=0\n30 FOR I=1 TO N\n40 X=X+I*2\n50 IF X>9999 THEN X=0\n60 NEXT I\n70 PRINT X\n";
constexpr char yabasicLoop[] = "20 X=0\n30 FOR I=1 TO N\n40 X=X+I*2\n50 IF X>9999 X=0\n60 NEXT I\n70 PRINT X\n";
constexpr char pythonLoop[] = "X = 0\nfor I in range(1, N + 1):\n    X = X + I * 2\n    if X > 9999: X = 0\nprint(X)\n";
const Rival bwbasic{"bwbasic", "10 N=", bwbasicLoop, 50000};
const Rival yabasic{"yabasic", "10 N=", yabasicLoop, 500000};
const Rival python3{"python3", "N = ", pythonLoop, 1000000};

int loopResult(int passes) {
    int x = 0;
    for (int i = 1; i <= passes; i++) {
        x += i * 2;
        if (x > 9999) x = 0;
    }
    return x;
}

// The last number that the program prints when it runs the file; -1 when there is none.
int lastNumberOf(const char *program, const std::string &path) {
    const std::string line = std::string(program) + " " + path + " 2>/dev/null </dev/null";
    // NOLINTNEXTLINE(cert-env33-c): the rivals are found as a shell finds them
    const std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(line.c_str(), "r"), pclose);
    int last = -1, number = 0;
    while (pipe != nullptr && feof(pipe.get()) == 0) {
        // NOLINTNEXTLINE(cert-err34-c): a number that is too large is another result
        if (fscanf(pipe.get(), "%d", &number) == 1) {
            last = number;
        } else {
            fgetc(pipe.get());
        }
    }
    return last;
}

// Seconds of the processor for the loop with its start-up; below 0 when it came to another result.
double secondsOf(const Rival &rival, int passes) {
    char path[] = "/tmp/loopXXXXXX";
    close(mkstemp(path));
    std::ofstream(path) << rival.head << passes << "\n" << rival.loop;
    const double before = processorSeconds(RUSAGE_CHILDREN);
    const int result = lastNumberOf(rival.program, path);
    unlink(path);
    return result == loopResult(passes) ? processorSeconds(RUSAGE_CHILDREN) - before : -1;
}

void rivalLoop(benchmark::State &state, const Rival &rival) {
    // NOLINTNEXTLINE(cert-env33-c,concurrency-mt-unsafe): as above; there is one thread
    if (std::system((std::string("command -v ") + rival.program + " >/dev/null 2>&1").c_str()) != 0) {
        state.SkipWithError("it isn't installed");
        return;
    }
    const double startUp = secondsOf(rival, 1);
    double used = 0;
    for (auto unused : state) {
        const double seconds = secondsOf(rival, rival.passes);
        if (seconds < 0) state.SkipWithError("it came to another result");
        state.SetIterationTime(std::max(seconds - startUp, 0.0));
        used += seconds - startUp;
    }
    const double nanoseconds = used * 1e9 / static_cast<double>(state.iterations()) / rival.passes;
    state.counters["ns_a_pass"] = nanoseconds;
    state.counters["times_ours"] = loopNanoseconds > 0 ? nanoseconds / loopNanoseconds : 0;
}
BENCHMARK_CAPTURE(rivalLoop, bwbasic, bwbasic)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rivalLoop, yabasic, yabasic)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rivalLoop, python3, python3)->UseManualTime()->Unit(benchmark::kMillisecond);

void lists(benchmark::State &state) {
    runWords(state, "\\Seq(X,X,1,30,1)\\->\\List 1:\\For 1\\->I \\To 100000:\\List 1[7]+1\\->\\List 1[7]:\\Next",
             100000);
}
BENCHMARK(lists)->Unit(benchmark::kMillisecond)->UseRealTime();

void textOutput(benchmark::State &state) { runWords(state, "\\For 1\\->I \\To 20000:\\Locate 1,1,I:\\Next", 20000); }
BENCHMARK(textOutput)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

}  // namespace numalink
