// Starting and stopping at any instant: calls nested ten deep, number input open, waits, full speed and the pace.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include "drawing/dot_fonts.h"
#include "emulator/expressions.h"
#include "emulator/machine/programs.h"
#include "emulator/run/machine_start.h"
#include "emulator/run/runner.h"
#include "emulator/run/scripted_run.h"
#include "emulator/screens/display.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "text/token_table.h"

namespace numalink {

namespace {

using Clock = std::chrono::steady_clock;

struct RunThreads : testing::Test {
    RunThreads() {
        threadRole = ThreadRole::graphical;
        tokenTableLoad();
        loadLargeFont();
        settingsLoad();
        settingsSetInt(setting::fullSpeed, 1);
    }
    ~RunThreads() override { runStop(); }

    static void start(const std::vector<std::string> &programs) {
        machineStart();
        programsClear();
        int number = 0;
        for (const std::string &words : programs) programAdd("P" + std::to_string(number++), imageOfWords(words));
        ASSERT_TRUE(runStart());
    }
};

std::string callOf(int number) { return "A+1\\->A:\\Prog \"P" + std::to_string(number) + "\""; }

}  // namespace

TEST_F(RunThreads, TwoHundredStopsAtRandomInstants) {
    std::mt19937 random(7);
    std::vector<std::string> nested;
    for (int number = 1; number <= 10; number++) nested.push_back(callOf(number));
    const std::string last[] = {
        "\\Lbl 1:A+1\\->A:\\Locate 1,1,A:\\Goto1",           "?\\->B", "\"WAIT\"\\Disp", "\\Plot 1,1\\Disp",
        "\\ViewWindow 0,1,0,0,1,0:\\F-Line \\(-)10^8,0,1,1", "1\\->A"};
    std::atomic<bool> watching = true;
    std::thread window([&] {
        Surface seenSurface;
        std::uint64_t seen = 0;
        while (watching) {
            displayCopy(seenSurface, seen);
            keyCode = 72;
            std::this_thread::sleep_for(std::chrono::microseconds(300));
            keyCode = 0;
        }
    });
    int innermostReached = 0;
    for (int i = 0; i < 200; i++) {
        std::vector<std::string> programs = nested;
        programs.push_back(last[static_cast<std::size_t>(i) % std::size(last)]);
        start(programs);
        // One of each sort has the time to come to its innermost program for sure, whatever the machine's load.
        const bool comesFar = i % 31 == 0;
        std::this_thread::sleep_for(std::chrono::microseconds(comesFar ? 100000 : random() % 6000));
        const auto before = Clock::now();
        runStop();
        EXPECT_TRUE(!comesFar || Clock::now() - before < std::chrono::milliseconds(500));
        innermostReached += machine.variables[0].re >= static_cast<double>(nested.size());
        EXPECT_FALSE(emulatorRunning);
        EXPECT_EQ(runEnded(), RunEnd::running);
    }
    EXPECT_GT(innermostReached, 0);
    watching = false;
    window.join();
}

// What asks a formula many times over within one statement.
TEST_F(RunThreads, LongCalculationsEndAtAStop) {
    const std::string longOnes[] = {
        "\\Sum(X,X,1,10^9)",
        "\"\\Sum(T,T,1,10^9)\"\\->\\Y 1:\\DrawGraph",
        "\"\\Sum(T,T,1,10^9)\"\\->\\Y 1:\\Integral(X+\\Y 1,0,1)",
        "\\ViewWindow 0,1,0,0,1,0,0,9,10^\\(-)12:\\Graph r=\\theta",
        "\"X\"\\->\\Y 1:\\D SelOn 1:1\\->\\D End:1\\->\\D pitch:\\DynaCon:\\DrawDyna",
        "10^9\\->\\R End:10^9-1\\->\\R Start:\"\\R an\"\\->\\R an1:\\DispR-Tbl",
        "\"\\R an\"\\->\\R an1:\\DrawWeb \\R an1,10^9",
    };
    for (const std::string &words : longOnes) {
        start({words});
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        const auto before = Clock::now();
        runStop();
        EXPECT_LT(Clock::now() - before, std::chrono::milliseconds(300)) << words;
        EXPECT_EQ(runEnded(), RunEnd::running) << words;
    }
}

TEST_F(RunThreads, ARunThatIsOnIsNotStartedTwice) {
    start({"\\Lbl 1:\\Goto1"});
    EXPECT_FALSE(runStart());
    runStop();
    programsClear();
    EXPECT_FALSE(runStart());
    EXPECT_EQ(runEnded(), RunEnd::nothingToRun);
}

// The triangle clears the key ahead of its wait, which tells that the program has come there.
TEST_F(RunThreads, KeysOfTheWindowReachTheProgram) {
    start({"\\Lbl 1:\\Getkey\\->A:A=0\\=>\\Goto1:\\Disp\\Prog \"P1\"", "7\\->B:\\Lbl 2:\\Goto2"});
    keyCode = 42;
    for (int i = 0; i < 500 && keyCode != 0; i++) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    keyCode = executeKey;
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(keyCode, executeKey) << "it stays behind a wait until the key goes up";
    runStop();
    EXPECT_EQ(machine.variables[0].re, 42);
    EXPECT_EQ(machine.variables[1].re, 7);
}

// 20 passes: the assignment and its evaluation, the For's two evaluations; each pays for the one ahead of it.
TEST_F(RunThreads, ThePaceIsWhatAStatementCosts) {
    settingsSetInt(setting::fullSpeed, 0);
    const auto before = Clock::now();
    runScripted({}, [] {
        programsClear();
        return programAdd("P", imageOfWords("\\For 1\\->I \\To 20:A\\->A:\\Next"));
    });
    EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(80));
}

}  // namespace numalink
