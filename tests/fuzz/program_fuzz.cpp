// Any bytes as the programs of a folder, with a bound on statements and keys. The input is split at the bytes F7 FE,
// which no token has: the program that is run, then SUB, f1, and so on. Statements go by their plans and once more by
// the passes alone, and both runs must leave the same.
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <thread>

#include "emulator/expressions/evaluator.h"
#include "emulator/machine/programs.h"
#include "emulator/run/runner.h"
#include "emulator/run/scripted_run.h"
#include "referee/run_outcome.h"
#include "require.h"
#include "support/silent_runs.h"

namespace {

using namespace numalink;

constexpr const char *names[] = {"MAIN", "SUB", "f1", "f2", "A"};
constexpr std::size_t stringSize = 2;

std::atomic<std::uint64_t> runs = 0;
std::atomic<bool> wasStopped = false;

// A single statement may walk a line of any length: what a user would do is stop it.
void stopSlowRuns() {
    for (std::uint64_t last = 0;;) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const std::uint64_t now = runs;
        if (now == last && emulatorRunning) {
            wasStopped = true;
            runHalt(RunEnd::limit);
        }
        last = now;
    }
}

bool prepare() {
    std::thread(stopSlowRuns).detach();  // to the end of the process
    return prepareSilentRuns();
}

bool loadPrograms(ByteView input) {
    programsClear();
    for (const char *name : names) {
        std::size_t end = 0;
        while (end < input.size() && !(input[end] == 0xF7 && end + 1 < input.size() && input[end + 1] == 0xFE)) end++;
        Bytes image = {':'};
        image.insert(image.end(), input.begin(), input.begin() + static_cast<std::ptrdiff_t>(end));
        image.insert(image.end(), {0xFF, 0});
        programAdd(name, image);
        if (end == input.size()) break;
        input = input.subspan(end + stringSize);
    }
    return true;
}

RunOutcome outcomeOf(ByteView programs, bool plainly) {
    const RunScript script = {.keys = {31, 27, 72, 31, 32, 31, 31, 31}, .getKeys = {31, 72}, .statementLimit = 300};
    forgetRuns();
    evaluateWithoutShortcuts = plainly;
    const RunReport report = runScripted(script, [&] { return loadPrograms(programs); });
    evaluateWithoutShortcuts = false;
    return runOutcome(report);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool prepared = prepare();
    require(prepared);
    runs++;
    if (size == 0) return 0;
    settingsSetInt(setting::haltOnError, data[0] & 1);
    settingsSetInt(setting::fillListsMatrices, data[0] >> 1 & 1);
    wasStopped = false;
    const ByteView programs = ByteView(data, size).subspan(1);
    const RunOutcome planned = outcomeOf(programs, false);
    if (!wasStopped && planned != outcomeOf(programs, true) && !wasStopped) std::abort();
    return 0;
}
