// Expressions against what they leave: arrays, faults and limits. The values of functions and operators, their order
// and the names of variables are those of the runs.
#include "emulator/evaluator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "emulator/expressions.h"
#include "emulator/programs.h"
#include "support/ui_recorder.h"

namespace numalink {
namespace {

TEST(Evaluator, LeavesWhatTheTableOfExpressionsTells) {
    std::ifstream file(NUMALINK_EXPRESSIONS);
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        const std::size_t colon = line.find(':');
        if (line.empty() || line[0] == '#' || colon == line.npos) continue;
        const std::string words = line.substr(0, colon);
        EXPECT_EQ(evaluated(words), line.substr(std::min(colon + 2, line.size()))) << words;
        count++;
    }
    EXPECT_GT(count, 120);
}

TEST(Evaluator, ComputesOnBehindAReport) {
    // A value computed after a report has no meaning, but nothing of it may lie outside of the stretch.
    EXPECT_TRUE(evaluated("\\xrt2").ends_with(" !Syn"));
    EXPECT_EQ(evaluated("0/0"), "nan+nani");
    EXPECT_EQ(evaluated("1/0").substr(0, 3), "inf");
    EXPECT_EQ(evaluated("\\sqrt(\\(-)1)"), "nan");
}

TEST(Evaluator, MakesLongSequences) {
    EXPECT_EQ(evaluated("\\Dim \\Seq(X,X,1,300,1)"), "300");
    EXPECT_EQ(evaluated("\\Seq(" + std::string(101, 'X') + ",X,1,1,1)"), "0 !Syn");
    EXPECT_EQ(evaluated("\\Seq(" + std::string(100, 'X') + ",X,1,1,1)"), "{1}");
}

TEST(Evaluator, HoldsItsLimits) {
    const std::string twentyFour(24, '('), twentyFive(25, '(');
    EXPECT_EQ(evaluated(twentyFour + "1" + std::string(24, ')')), "1");
    EXPECT_EQ(evaluated(twentyFive + "1" + std::string(24, ')')), "1 !Syn");
    std::string many = "[[1";
    for (int i = 2; i <= 301; i++) many += ",1";
    const RecordedUi ui;
    EXPECT_EQ(evaluated("\\Dim " + many.substr(0, 3 + 2 * 299) + "]]"), "{1,300}");
    EXPECT_THAT(uiRecord.lines, testing::IsEmpty());
    EXPECT_EQ(evaluated("\\Dim " + many + "]]"), "{1,300} !Syn");
    EXPECT_THAT(uiRecord.lines, testing::ElementsAre("box 64 / 2"));
    EXPECT_EQ(evaluated("\\Dim {" + many.substr(2, 1 + 2 * 299) + "}"), "300");
    EXPECT_EQ(evaluated("\\Dim {" + many.substr(2) + "}"), "300 !Syn");
    const FreshMachine fresh;
    std::string sum = "1";
    for (int i = 2; i <= 250; i++) sum += "+1";  // 499 cells
    programAdd("f1", imageOfWords(sum));
    programAdd("f2", imageOfWords(sum + "+1"));
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\f1,\\f2")), "250 <2C> 0 !Syn");
}

}  // namespace
}  // namespace numalink
