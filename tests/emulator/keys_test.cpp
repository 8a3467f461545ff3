// The keys of runs: recorded, written, read and played again.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>

#include "emulator/expressions/vocabulary.h"
#include "emulator/run/key_file.h"
#include "emulator/run_files.h"
#include "emulator/screens/display.h"
#include "emulator/screens/text_screen.h"
#include "settings/settings_store.h"
#include "support/ui_recorder.h"

namespace numalink {

namespace {

// All that a run leaves to be seen, and to be gone on with.
struct Left {
    RunEnd ended = RunEnd::running;
    std::uint64_t statements = 0;
    std::vector<Color> display;
    std::string text;
    std::vector<double> variables;
    std::uint32_t random = 0;
    friend bool operator==(const Left &, const Left &) = default;
};

Left leftBy(const RunReport &report) {
    Left left;
    left.ended = report.ended;
    left.statements = report.statements;
    left.display = displayNow().dots;
    for (int row = 1; row <= textRowCount; row++) left.text += textRowCodes(row);
    for (const ComplexValue &value : machine.variables)
        left.variables.insert(left.variables.end(), {value.re, value.im});
    left.random = randomPlace();
    return left;
}

// The machine as a run before may have left it.
void prepare(const RunFile &file, double ans, std::uint32_t random) {
    freshMachine(file);
    machine.ans = complexMake(ans, 1);
    machine.window[xMax] = complexReal(ans / 3);
    machine.plotCurrent = {ans, -ans};
    randomGoOn(random);
}

TEST(Keys, EveryRunIsPlayedAgainToTheBitFromItsFile) {
    prepareRuns();
    const RunClock clock;
    const RecordedUi ui;
    int played = 0, withKeys = 0;
    std::vector<std::string> paths = runFiles(NUMALINK_RUNS_FOLDER);
    std::ranges::copy(runFiles(NUMALINK_PROGRAMS_FOLDER), std::back_inserter(paths));
    for (const std::string &path : paths) {
        const RunFile file = readRunFile(path);
        prepare(file, 1.0 / 7, 12345);
        const RunReport first = runScripted(scriptOf(file), [&] {
            keysBegin(keyPort);
            return loadPrograms(file);
        });
        if (first.ended == RunEnd::limit || first.ended == RunEnd::memory) continue;
        const Left before = leftBy(first);
        const std::string text = keyFileText({.program = "P", .checksum = 1, .settings = {}, .keys = keysTaken()});
        KeyFile read;
        ASSERT_EQ(keyFileRead(text, read), 0) << text;
        prepare(file, -5, 99);
        const RunReport again = runScripted({.keys = read.keys.waits,
                                             .getKeys = read.keys.getKeys,
                                             .statementLimit = read.keys.statements,
                                             .begins = read.keys.begins},
                                            [&] { return loadPrograms(file); });
        EXPECT_EQ(leftBy(again), before) << path;
        played++;
        withKeys += read.keys.waits.empty() && read.keys.getKeys.empty() ? 0 : 1;
    }
    EXPECT_GT(played, 400);
    EXPECT_GT(withKeys, 40);
    machine.window[yMin] = complexReal(7);
    beginAs({.random = 5, .values = {}});
    EXPECT_EQ(beginning(), (RunBeginning{.random = 5, .values = {}})) << "what a record doesn't tell of was 0";
}

TEST(Keys, AnswersOfARecordComeFirstAndThenTheKeyboards) {
    keyCode = 72;
    keysBeginPlaying({.begins = {}, .waits = {31, {0, 2}}, .getKeys = {28}, .statements = 0});
    EXPECT_TRUE(keysArePlayed());
    std::vector<int> found;
    for (int i = 0; i < 3; i++) found.push_back(keyPort.waitKey());
    found.push_back(keyPort.getKey());
    EXPECT_TRUE(keysArePlayed());
    found.push_back(keyPort.getKey());
    EXPECT_FALSE(keysArePlayed());
    keyCode = 63;
    found.push_back(keyPort.waitKey());
    EXPECT_EQ(found, (std::vector<int>{31, 0, 0, 28, 0, 63})) << "a key that was held meanwhile isn't the run's";
    const RunKeys taken = keysTaken();
    EXPECT_EQ(taken.waits, (KeyRuns{31, {0, 2}, 63}));
    EXPECT_EQ(taken.getKeys, (KeyRuns{28, 0}));
    keysSpoil();
    EXPECT_EQ(keyPort.waitKey(), 63);
    EXPECT_EQ(keysTaken().waits, taken.waits);
    EXPECT_TRUE(keysTaken().isCut);
    machine.statementsRun = 10;
    keysBegin();
    EXPECT_FALSE(keysTaken().isCut);
    keyPort.waitKey();
    machine.statementsRun = 9;
    keyPort.waitKey();
    EXPECT_EQ(keysTaken().waits, (KeyRuns{63})) << "what comes behind a way back is on another road";
    EXPECT_EQ(keysTaken().statements, 10u);
    keyPort = windowKeys;
    keyCode = 0;
    machine.statementsRun = 0;
}

TEST(Keys, TextsOfKeysAreReadAsTheyAreWrittenAndNothingElseIs) {
    KeyRuns runs{7};
    EXPECT_TRUE(keyRunsFromText("31,0*120,72*1", runs));
    EXPECT_EQ(runs, (KeyRuns{7, 31, {0, 120}, {72, 1}}));
    for (const char *text : {"", ",", "31,", "31,,5", "-1", "+3", "10000", "3*0", "3*-1", "3*", "*3", "3x", " 3",
                             "3*9*9", "3*1099511627777", "99999999999"}) {
        EXPECT_FALSE(keyRunsFromText(text, runs)) << text;
        EXPECT_EQ(runs.size(), 4u) << text;
    }
    KeyReader reader(&runs);
    std::vector<int> given;
    while (const auto key = reader.next()) given.push_back(*key);
    EXPECT_EQ(given.size(), 123u);
    EXPECT_EQ(given[1], 31);
    EXPECT_EQ(given.back(), 72);
}

TEST(Keys, FilesComeBackAsTheyWereAndNameTheLineThatIsNone) {
    std::mt19937_64 chance(20);
    for (int round = 0; round < 200; round++) {
        KeyFile file;
        file.program = "A\nB\x7F \xC3\xA9";
        file.checksum = static_cast<std::uint32_t>(chance());
        file.settings = {{"CalculatorModes", 1}, {"HaltOnError", 0}};
        file.keys.begins.random = static_cast<std::uint32_t>(chance());
        for (std::size_t i = chance() % 5; i < beginningValueCount; i += 1 + chance() % 40)
            file.keys.begins.values.emplace_back(i, static_cast<double>(chance()) / 3 - 1e18);
        file.keys.statements = chance();
        for (std::size_t i = chance() % 60; i > 0; i--)
            file.keys.waits.emplace_back(static_cast<int>(chance() % 80), 1 + chance() % 9);
        for (std::size_t i = chance() % 60; i > 0; i--) file.keys.getKeys.emplace_back(static_cast<int>(chance() % 80));
        KeyFile read;
        std::string text = keyFileText(file);
        for (std::size_t at = 0; round % 2 == 0 && (at = text.find('\n', at)) != std::string::npos; at += 2)
            text.insert(at, "\r");
        ASSERT_EQ(keyFileRead(text, read), 0);
        EXPECT_EQ(read.program, "A?B? \xC3\xA9");
        EXPECT_EQ(read.checksum, file.checksum);
        EXPECT_EQ(read.settings, file.settings);
        EXPECT_EQ(read.keys.begins, file.keys.begins);
        EXPECT_EQ(read.keys.statements, file.keys.statements);
        EXPECT_EQ(read.keys.waits, file.keys.waits);
        EXPECT_EQ(read.keys.getKeys, file.keys.getKeys);
    }
    for (const char *line : {"seed -1", "seed 4294967296", "start 0=nan", "start 0=inf", "start 132=1", "start 0",
                             "statements x", "program XYZ N", "set Language 1", "set HaltOnError 2", "set HaltOnError",
                             "keys", "keys 1,", "getkey 31 31", "exec rm", "KEYS 1", " keys 1", "numalink-keys 1"}) {
        KeyFile read;
        EXPECT_EQ(keyFileRead(std::string("numalink-keys 1\n# a remark\n\n") + line + "\nkeys 31\n", read), 4) << line;
    }
    KeyFile read;
    EXPECT_EQ(keyFileRead("", read), 1);
    EXPECT_EQ(keyFileRead("numalink-keys 2\nkeys 31", read), 1);
    std::string settings = "numalink-keys 1\n";
    for (int i = 0; i < 4; i++) settings += "set HaltOnError 1\n";
    EXPECT_EQ(keyFileRead(settings, read), 5) << "bounded";
}

}  // namespace

}  // namespace numalink
