// Runs of files and of words with the debugger, and what they leave: for the tests of it.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <ostream>

#include "debugger/debugger.h"
#include "debugger/machine_image.h"
#include "debugger/trace.h"
#include "emulator/machine/machine.h"
#include "emulator/run_files.h"
#include "emulator/screens/display.h"
#include "support/ui_recorder.h"
#include "telling/language_table.h"

namespace numalink {

// What a run leaves, whatever way it was taken.
struct Ending {
    std::uint64_t digest = 0, statements = 0;
    RunEnd ended = RunEnd::running;
    std::size_t errors = 0;
    friend bool operator==(const Ending &, const Ending &) = default;
};
inline std::ostream &operator<<(std::ostream &out, const Ending &ending) {
    return out << ending.statements << " statements, ended " << static_cast<int>(ending.ended) << ", " << ending.errors
               << " errors, digest " << ending.digest;
}

// Runs the file with the debugger as options say, if any; onStop answers each stop, on the run thread.
inline void (*onStop)() = nullptr;

inline Ending runWith(const RunFile &file, const DebugOptions *options) {
    const RecordedUi recorded;
    freshMachine(file);
    displayRestore(Surface(displayWidth, displayHeight), Surface(displayWidth, displayHeight));
    debugStateChanged = [] {
        if (debugState() == DebugState::stopped) onStop();
    };
    const RunReport report = runScripted(scriptOf(file), [&] {
        if (!loadPrograms(file)) return false;
        if (options != nullptr) debugBegin(*options);
        return true;
    });
    const Ending ending{machineDigest(), report.statements, report.ended, report.errors.size()};
    debugForget();
    debugStateChanged = nullptr;
    return ending;
}

// A program of its own, and a subprogram behind a bar, as the file that it might be.
inline RunFile fileWith(const std::string &words) {
    const std::size_t bar = words.find('|');
    RunFile file;
    file.sections = {{"program MAIN", {words.substr(0, bar)}}, {"statements", {"1000000"}}};
    if (bar != words.npos) file.sections.push_back({"program SUB", {words.substr(bar + 1)}});
    return file;
}

inline std::map<std::uint64_t, std::uint64_t> digests;  // ahead of every so many-th statement, by how many are over
inline std::uint64_t digestEvery = 1;
inline std::uint64_t digestLimit = 1000;  // states of a file that are known

inline constexpr DebugTrace digestTrace = {
    .statement =
        [](int, int) {
            if (machine.statementsRun % digestEvery == 0 && machine.statementsRun < digestLimit * digestEvery)
                digests[machine.statementsRun] = machineDigest();
        },
    .report = [](const char *) {},
    .screenMode = [](int) {},
};

inline Ending runAndDigest(const RunFile &file) {
    digests.clear();
    debugTrace = &digestTrace;
    const DebugOptions options;
    const Ending ending = runWith(file, &options);
    debugTrace = nullptr;
    return ending;
}

struct Debugged : testing::Test {
    static void SetUpTestSuite() {
        prepareRuns();
        languageLoad("English", "English");
    }
    RunClock clock;
};

// One file of so many, others with each seed; all of them where NUMALINK_ALL_RUNS is set.
inline constexpr std::size_t shareOfRuns = 5;
inline bool takesAll() { return std::getenv("NUMALINK_ALL_RUNS") != nullptr; }

template <class Check>
void withSomeFiles(const Check &check) {
    std::vector<std::string> names = runFiles(NUMALINK_RUNS_FOLDER);
    std::ranges::copy(runFiles(NUMALINK_PROGRAMS_FOLDER), std::back_inserter(names));
    const auto seed = static_cast<std::size_t>(testing::UnitTest::GetInstance()->random_seed());
    const std::size_t share = takesAll() ? 1 : shareOfRuns;
    for (std::size_t i = seed % share; i < names.size(); i += share) {
        SCOPED_TRACE(names[i]);
        check(readRunFile(names[i]));
    }
}

}  // namespace numalink
