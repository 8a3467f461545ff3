// Runs that are saved and gone on with: wherever a run is cut, it goes on as it would have gone without.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <random>

#include "debugger/debugger.h"
#include "debugger/history.h"
#include "debugger/moments.h"
#include "debugger/trace.h"
#include "emulator/expressions.h"
#include "emulator/expressions/vocabulary.h"
#include "emulator/machine/key_port.h"
#include "emulator/machine/programs.h"
#include "emulator/run_files.h"
#include "emulator/screens/display.h"
#include "emulator/screens/pictures.h"
#include "emulator/screens/text_screen.h"
#include "platform/clock.h"
#include "support/ui_recorder.h"
#include "telling/language_table.h"

namespace numalink {

namespace {

// What a run came by and left.
struct Course {
    std::map<std::uint64_t, std::uint64_t> digests;  // ahead of some statements, by how many are over
    std::uint64_t digest = 0, statements = 0;
    RunEnd ended = RunEnd::running;
    Bytes atEnd;  // the moment of the run when it is over
};

std::map<std::uint64_t, std::uint64_t> digests;
std::uint64_t digestEvery = 1, imageAt = UINT64_MAX;

// A report counts where it is made, so the trace of those goes: a resumed run has but those from the moment on.
constexpr DebugTrace digestTrace = {
    .statement =
        [](int, int) {
            machine.errorTrace = nullptr;
            if (machine.statementsRun == imageAt) historyCut(imageAt, true, true);
            if (machine.statementsRun % digestEvery == 0) digests[machine.statementsRun] = machineDigest();
        },
    .report = [](const char *) {},
    .screenMode = [](int) {},
};

struct KeysTaken {
    std::size_t waits = 0, getKeys = 0;
};
KeysTaken keysTaken, keysAtMoment;
KeyPort scriptPort;
Bytes momentGiven;

constexpr KeyPort countingPort = {
    .getKey =
        [] {
            keysTaken.getKeys++;
            return scriptPort.getKey();
        },
    .beforeWaitTest =
        [] {
            const bool comes = scriptPort.beforeWaitTest();
            if (comes) keysTaken.waits++;
            return comes;
        },
};

// A machine on which something else has run.
void wearMachine() {
    machine.variables.fill(complexReal(7));
    machine.ans = complexReal(8);
    machine.window.fill(complexReal(9));
    machine.plotCurrent = {3, 4};
    for (int picture = 1; picture <= memoryCount; picture++) pictureMemory(picture)->dots.assign(8192, 1);
    randomGoOn(4711);
    printText("WORN", pixelColor::green, false);
}

Course courseOf(const RunFile &file, const RunScript &script, const Moment *from = nullptr,
                std::uint64_t askedAt = UINT64_MAX) {
    const RecordedUi recorded;
    freshMachine(file);
    if (from != nullptr) wearMachine();
    digests.clear();
    keysTaken = {};
    debugTrace = &digestTrace;
    momentTaken = [](const Bytes &moment) {
        momentGiven = moment;
        keysAtMoment = keysTaken;
    };
    const RunReport report = runScripted(script, [&] {
        loadPrograms(file);
        scriptPort = keyPort;
        keyPort = countingPort;
        momentsFollow();
        if (askedAt != UINT64_MAX) momentAskAt(askedAt);
        if (from != nullptr) EXPECT_EQ(momentResume(*from), MomentFault::none);
        return true;
    });
    Course course{digests, machineDigest(), report.statements, report.ended, momentOfEndedRun()};
    debugForget();
    debugTrace = nullptr;
    momentTaken = nullptr;
    return course;
}

RunScript rest(const RunScript &script, const KeysTaken &taken) {
    RunScript left = script;
    const auto drop = [](std::vector<int> &keys, std::size_t count) {
        keys.erase(keys.begin(), keys.begin() + static_cast<std::ptrdiff_t>(std::min(count, keys.size())));
    };
    drop(left.keys, taken.waits);
    drop(left.getKeys, taken.getKeys);
    return left;
}

// From the moment on the run is the same, and its bytes read back are the same.
void expectGoesOn(const RunFile &file, const RunScript &script, const Bytes &bytes, const Course &straight) {
    Moment moment;
    ASSERT_EQ(momentFromBytes(bytes, moment), MomentFault::none);
    EXPECT_EQ(momentAsBytes(moment), bytes);
    const Course resumed = courseOf(file, script, &moment);
    EXPECT_EQ(resumed.digest, straight.digest);
    EXPECT_EQ(resumed.statements, straight.statements);
    EXPECT_EQ(resumed.ended, straight.ended);
    for (const auto &[statement, digest] : straight.digests) {
        if (statement < moment.statement + 2) continue;
        const auto found = resumed.digests.find(statement);
        ASSERT_NE(found, resumed.digests.end()) << "ahead of statement " << statement;
        ASSERT_EQ(found->second, digest) << "differs ahead of statement " << statement;
    }
}

struct Moments : testing::Test {
    static void SetUpTestSuite() {
        prepareRuns();
        languageLoad("English", "English");
    }
    RunClock clock;
    std::mt19937 chance{static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed())};
    std::uint64_t below(std::uint64_t limit) { return limit == 0 ? 0 : chance() % limit; }
};

// One file of so many, others with each seed; all of them where NUMALINK_ALL_RUNS is set.
constexpr std::size_t shareOfRuns = 12;
constexpr int cutsOfEach = 3;

RunFile fileOf(const std::string &program, const std::string &keys = "") {
    RunFile file;
    const std::size_t bar = program.find('|');
    file.sections = {{"program MAIN", {program.substr(0, bar)}}, {"keys", {keys}}};
    if (bar != program.npos) file.sections.push_back({"program SUB", {program.substr(bar + 1)}});
    return file;
}

Moment momentOf(const RunFile &file, std::uint64_t statement) {
    momentGiven.clear();
    courseOf(file, scriptOf(file), nullptr, statement);
    Moment moment;
    EXPECT_EQ(momentFromBytes(momentGiven, moment), MomentFault::none);
    return moment;
}

}  // namespace

TEST_F(Moments, ARunGoesOnFromAnyStatementAndAnyWait) {
    const std::vector<std::string> names = runFiles(NUMALINK_RUNS_FOLDER);
    const std::size_t share = std::getenv("NUMALINK_ALL_RUNS") != nullptr ? 1 : shareOfRuns;
    std::size_t atStatements = 0, inWaits = 0;
    for (std::size_t i = below(share); i < names.size(); i += share) {
        SCOPED_TRACE(names[i]);
        const RunFile file = readRunFile(names[i]);
        const RunScript script = scriptOf(file);
        digestEvery = 1u << 20;
        digestEvery = 1 + courseOf(file, script).statements / 50;
        const Course straight = courseOf(file, script);
        for (int cut = 0; cut < cutsOfEach && straight.statements > 0; cut++) {
            momentGiven.clear();
            courseOf(file, script, nullptr, below(straight.statements));
            if (momentGiven.empty()) continue;
            atStatements++;
            expectGoesOn(file, rest(script, keysAtMoment), momentGiven, straight);
        }
        // The keys give out in a wait; the image that its moment is repeated from lies anywhere ahead of it.
        for (int cut = 0; cut < cutsOfEach && !script.keys.empty(); cut++) {
            RunScript cutOff = script;
            cutOff.keys.resize(below(script.keys.size()));
            imageAt = below(straight.statements);
            const Course ended = courseOf(file, cutOff);
            const KeysTaken taken = keysTaken;
            imageAt = UINT64_MAX;
            if (ended.atEnd.empty() || ended.ended == RunEnd::limit) continue;
            inWaits++;
            expectGoesOn(file, rest(script, taken), ended.atEnd, straight);
        }
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(atStatements, 10u);
    EXPECT_GT(inWaits, 10u);
    std::printf("%zu moments between statements, %zu in waits\n", atStatements, inWaits);
}

}  // namespace numalink
