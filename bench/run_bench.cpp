// How many statements of a program run in a second, at full speed.
#include <benchmark/benchmark.h>

#include "emulator/programs.h"
#include "emulator/runner.h"
#include "emulator/scripted_run.h"
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

// A pass is four or five statements.
void countingLoop(benchmark::State &state) {
    runWords(state, "1000000\\->N:0\\->X:\\For 1\\->I \\To N:X+I*2\\->X:\\If X>9999:\\Then 0\\->X:\\IfEnd:\\Next",
             1000000);
}
BENCHMARK(countingLoop)->Unit(benchmark::kMillisecond)->UseRealTime();

void lists(benchmark::State &state) {
    runWords(state, "\\Seq(X,X,1,30,1)\\->\\List 1:\\For 1\\->I \\To 100000:\\List 1[7]+1\\->\\List 1[7]:\\Next",
             100000);
}
BENCHMARK(lists)->Unit(benchmark::kMillisecond)->UseRealTime();

void textOutput(benchmark::State &state) { runWords(state, "\\For 1\\->I \\To 20000:\\Locate 1,1,I:\\Next", 20000); }
BENCHMARK(textOutput)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

}  // namespace numalink
