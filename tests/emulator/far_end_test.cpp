// Send( and Receive( against the virtual calculator on a pseudo terminal, and what comes of a far end that fails.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "emulator/expressions.h"
#include "emulator/machine/arrays.h"
#include "emulator/machine/far_end.h"
#include "emulator/machine/programs.h"
#include "emulator/run/machine_start.h"
#include "emulator/run/runner.h"
#include "emulator/run/scripted_run.h"
#include "platform/thread_role.h"
#include "settings/settings_store.h"
#include "text/token_table.h"
#include "virtual_calculator/calculator_mover.h"
#include "virtual_calculator/pseudo_terminal.h"

namespace numalink {

namespace {

struct FarEnd : testing::Test {
    FarEnd() {
        threadRole = ThreadRole::graphical;
        tokenTableLoad();
        settingsLoad();
        settingsSetInt(setting::fullSpeed, 1);
        settingsSetInt(setting::fillListsMatrices, 0);
        settingsSetValue(setting::farEndPort, terminal.path);
    }
    ~FarEnd() override {
        runStop();
        settingsSetValue(setting::farEndPort, "");
    }

    // Runs the program while the calculator answers, one conversation after the other.
    RunReport run(const std::string &words) {
        std::atomic<bool> stop = false;
        calculator::Moving moving{.answerMilliseconds = answerMilliseconds};
        moving.stop = &stop;
        std::thread mover([&] {
            while (!stop) {
                static_cast<void>(calculator::moveCalculator(other, terminal.master, moving));
                other.state = calculator::State::rest;
            }
        });
        const RunReport report = runScripted({}, [&] {
            programsClear();
            return programAdd("P", imageOfWords(words));
        });
        stop = true;
        mover.join();
        return report;
    }
    static std::string reportsOf(const RunReport &report) {
        std::string text;
        for (const ErrorReport &error : report.errors)
            text += error.text.substr(0, 3) + std::to_string(error.statement) + " ";
        return text;
    }

    std::uint64_t answerMilliseconds = 0;
    PseudoTerminal terminal;
    calculator::Calculator other;
};

}  // namespace

TEST_F(FarEnd, GivesBackWhatWasSent) {
    RunReport report =
        run("\\(-)1.5\\->A:2+3\\{i}\\->B:{4,5,6}\\->\\List 2:[[1,2,3][4,5,6]]\\->\\Mat C:"
            "\\Send(A):\\Send(B:\\Send(\\List 2):\\Send(\\Mat C)");
    EXPECT_EQ(reportsOf(report), "");
    EXPECT_TRUE(other.closed);
    EXPECT_EQ(other.failures, 0);
    ASSERT_EQ(other.received.size(), 4u);
    for (const calculator::Item &item : other.received) EXPECT_TRUE(calculator::isGood(item));
    other.library = other.received;
    report =
        run("{0,0}\\->\\List 2:\\Receive(A):\\Receive(B):\\Receive(\\List 2):\\Receive(\\Mat C):\\Mat C[2,3]\\->D:"
            "\\Receive(\\List 3)");
    EXPECT_EQ(reportsOf(report), "Com7 ") << "it has no such list";
    EXPECT_EQ(machine.variables[0].re, -1.5);
    EXPECT_EQ(machine.variables[1].re, 2);
    EXPECT_EQ(machine.variables[1].im, 3);
    EXPECT_EQ(machine.variables[3].re, 6);
    const MatrixDescriptor *list = machine.listSlots[0][1];
    ASSERT_TRUE(list != nullptr && list->rows == 3 && list->cols == 1);
    EXPECT_EQ(matrixElements(list)[2], 6);
    EXPECT_EQ(machine.listSlots[0][2], nullptr);
}

TEST_F(FarEnd, TakesWhatIsOfferedUnasked) {
    other.toSend.push_back(calculator::valueItem("LT", "List 1", "", 3, 1, 7));
    startSending(other);
    answerMilliseconds = 300;  // what comes ahead of the port's opening is dropped
    EXPECT_EQ(reportsOf(run("\\Receive(\\List 1)")), "");
    ASSERT_NE(machine.listSlots[0][0], nullptr);
    EXPECT_EQ(machine.listSlots[0][0]->rows, 3);
}

TEST_F(FarEnd, TheFastLineIsOpenedAndClosedByTheProgram) {
    other.library.push_back(calculator::valueItem("VM", "A", "", 1, 1, 3));
    const RunReport report = run("\\@F715A:\\@F713:7\\->A:\\@F715A:\\@F714:\\@F715A:\\@F716A");
    EXPECT_EQ(reportsOf(report), "Com1 Com6 Com7 ");
    EXPECT_EQ(other.received.size(), 1u);
    EXPECT_FALSE(farEndIsOpen());
}

TEST_F(FarEnd, OverwritesWhereAskedAndGivesUpWhereRefused) {
    other.manners.headAnswer = 0x21;
    EXPECT_EQ(reportsOf(run("7\\->A:\\Send(A)")), "");
    EXPECT_EQ(other.received.size(), 1u);
    other.library = other.received;
    other.library[0].data[6] ^= 1;
    other.manners.headAnswer = 0x24;
    EXPECT_EQ(reportsOf(run("\\Send(A):\\Receive(A)")), "Com1 Com2 ") << "refused, and a wrong sum";
    other.manners = {.dataAnswer = 0x2B};
    EXPECT_EQ(reportsOf(run("\\Send(A):\\Receive(\\Mat A)")), "Com1 Com2 ");
    EXPECT_EQ(machine.variables[0].re, 0);
}

TEST_F(FarEnd, NamesWhatCantBeSent) {
    EXPECT_EQ(reportsOf(run("\\Send(\\List 9):\\Send(5):\\Send(\\List \\Ans):\\Send(A+1):(1/0)\\->A:\\Send(A)")),
              "Dim1 Syn2 Syn3 Syn4 Ma 6 ");
    settingsSetValue(setting::farEndPort, "");
    EXPECT_EQ(reportsOf(run("\\Send(A):\\Receive(A):\\@F713")), "Com1 Com2 Com3 ");
    EXPECT_TRUE(other.received.empty());
}

TEST_F(FarEnd, AStopEndsTheWaitForASilentOne) {
    machineStart();
    programsClear();
    programAdd("P", imageOfWords("\\Lbl 1:\\Send(A):\\Goto1"));
    ASSERT_TRUE(runStart());
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const auto before = std::chrono::steady_clock::now();
    runStop();
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
}

}  // namespace numalink
