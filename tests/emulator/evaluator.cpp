// Expressions against what they leave: arrays, faults and limits. The values of functions and operators, their order
// and the names of variables are those of the runs.
#include "emulator/evaluator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "emulator/expressions.h"
#include "emulator/programs.h"
#include "support/ui_recorder.h"

namespace numalink {
namespace {

// A table of "words: result", two blanks or a new line between the cases.
void expectAll(std::string_view table) {
    for (std::size_t at = 0; (at = table.find_first_not_of(" \n", at)) != table.npos;) {
        const std::size_t end = std::min(table.find("  ", at), table.find('\n', at));
        const std::string_view test = table.substr(at, end - at);
        const std::size_t colon = test.find(':');
        ASSERT_NE(colon, test.npos) << test;
        const std::string words(test.substr(0, colon));
        EXPECT_EQ(evaluated(words), test.substr(std::min(colon + 2, test.size()))) << words;
        at = end;
    }
}

TEST(Evaluator, LeavesWhatNoPassReachesAndReportsWhatLacksANumber) {
    expectAll(R"(
        1+: 1 <89>                  *2: <A9> 2                  2\sin : 2 <81>              \sin : <81>
        \x^2: <8B>                  2^: 2 <A8>                  ^2: 0 !Syn                  2^\(-)1: 1 !Syn
        2*-3: 0 3 !Syn              2^\sin 3: 3 !Syn            \ReP \ImP 1: 0 !Syn         ,\x^2: 0 !Syn
        1+.A: 1 5 !Syn              \Xfct: <7F0B>               5\Plot 1,2: 5 <E0> 1 <2C> 2
        1): 1 !Syn                  )1+2): 3 !Syn               \Max(1,2): 0 !Syn           3+\Pol(1,2): 3 !Syn
        \Det \Mat A: <7F21> [1,2][3,4]                          \List 1+1: {4,5,6} 1        2\List 1: 2 {4,5,6}
        \List 1*2: 0 !Syn           .,: <2C>
    )");
    // A value computed after a report has no meaning, but nothing of it may lie outside of the stretch.
    EXPECT_TRUE(evaluated("\\xrt2").ends_with(" !Syn"));
    EXPECT_EQ(evaluated("0/0"), "nan+nani");
    EXPECT_EQ(evaluated("1/0").substr(0, 3), "inf");
    EXPECT_EQ(evaluated("\\sqrt(\\(-)1)"), "nan");
}

TEST(Evaluator, MakesListsAndMatrices) {
    expectAll(R"(
        \List 1: {4,5,6}            \Mat A: [1,2][3,4]          \List 9: <7F51> 9 !Dim      \Mat Z: <7F40> 0 !Dim
        \Mat 5: <7F40> 5 !Syn       \List A: <7F51> 5           \List 27: <7F51> 27         \List 0: <7F51> 0
        \List \Ans: <7F51> 0 !Dim   \List 1[2]: 5               \List 1[2.9]: 5             \List 1[A-2]: 6
        \List 1[\List 1[1]-3]: 4    \List 1[0]: 0 !Arg          \List 1[4]: 0 !Arg          \List 1[2: {4,5,6} <5B> 2
        \List 1[1+1: 5              \List 1[\List 1[1+1: 0 !Syn !Arg                        \List 1[,]: 0 !Syn !Arg
        \Mat A[2,1]: 3              \Mat A[1,2]: 2              \Mat A[1,2: 2               \Mat A[A-3,A-4]+1: 4
        \List 1[1+1,7: 5 <2C> 7     \Mat A[1,2,7: 2 <2C> 7      \List 1[]+2: 0 !Syn !Arg    \List 1[[1]+2: 2 !Syn !Arg
        \Mat A[3,1]: 0 !Arg         \Mat A[1]: 0 !Syn !Arg      \Mat B[2]: 0 !Syn !Arg      \Mat B[2,2]: 0 !Arg
        \Mat A[1 2]: 2 !Syn         {1+1,2*3}: {2,6}
        {\{i}}: {0}                 {A}: {5}                    {7}{8}: {7} {8}             {1,2}[2]: {1,2} <5B> 2 <5D>
        {1,\sin }: {1,0} !Syn       {1,2: <7B> 1 <2C> 2 !Syn    {}: {} !Syn                 {1,}: {1} !Syn
        [[1,2][3,4]]: [1,2][3,4]    [[1,2][3,4]: [1,2][3,4]     [[1,2]]: [1,2]              [[1,2][3]]: [1][2]
        [[A+1,(2)(3)]]: [6,6]       [[\{i}]]: [0] !Ma           [[\(-)6/2]]: [-3] !Ma       [[1,2: [1,2] !Syn
        [[1,,2]]: [1,0] !Syn        [[1 2]]: [1] !Syn           [[1]][[2]]: [1] [2]         [: <5B>
        [[: [] !Syn                 [[1,]: [1] !Syn             \Dim \List 1: 3             \Dim \Mat A: {2,2}
        \Dim \Mat B: {2,1}          \Dim 3: 0 !Syn              2\Dim \List 1: 6            \sqrt\Dim {1,2,3,4}: 2
        \Dim \List 9: 0 !Syn !Dim   \Identity 2: [1,0][0,1]     \Identity 2.9: [1,0][0,1]   \Identity 0: [] !Arg
        \Identity \List 1: [] !Syn                              \Sum {1,2,3}: 6             \Sum \List 1+1: 16
        \Sum \Mat A: <7F4C> [1,2][3,4] !Syn                     .\Mat A: [0,0][0,0]
    )");
}

TEST(Evaluator, CallsTheThreeFunctions) {
    expectAll(R"(
        \Augment(\Mat A,\Mat B): [1,2,5][3,4,6]                 \Augment(\Mat B,\Mat A: [5,1,2][6,3,4]
        \Augment(\Mat A,[[1]]): 0 !Dim                          \Augment(\List 1,\List 2): 0 !Syn
        \Augment(\Mat A): 0 !Syn    \List->Mat(\List 1,\List 2): [4,7][5,8][6,9]
        \List->Mat(1,2): [4,7][5,8][6,9]                        \List->Mat({1,2},{3,4}): [1,3][2,4]
        \List->Mat(\List (1),2): [4,7][5,8][6,9]                \List->Mat(1,{1},2): 0 !Dim
        \List->Mat(9): 0 !Dim       \List->Mat(\Mat A): 0 !Syn                              \List->Mat(): 0 !Syn
        \List->Mat(1: [4][5][6]     \Seq(X\x^2,X,1,3,1): {1,4,9}
        \Seq((X+1)\x^2,X,1,3,1): {1,1,1}                        \Seq(X,X,3,1,(\(-)1)): {3,2,1}
        \Seq(X,X,1,2,.5): {1,1.5,2}                             \Seq(X,X,1,(A),2): {1,3,5}
        \Seq(X,X,1,A,2): 0 !Arg     \Seq(X,X,1,3,0): 0 !Arg     \Seq(X,X,1,3): 0 !Arg       \Seq(X,X,1,3,: 0 !Arg
        \Seq(X,X,3,1,1): 0 !Arg     \Seq(X,X,1,3,(\(-)1)): 0 !Arg                           \Seq(X,2,1,3,1): 0 !Arg
        \Seq(X,X,1,(3,1: {1,2,3}
        \Seq(X,X,1,3,1,1): 0 !Arg   \Seq(,X,1,3,1): 0 !Syn      \Seq({X},X,1,2,1): 0 !Syn   \Seq(X,X,1,301,1): 0 !Syn
    )");
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

// The stretch stands in the middle of other cells: none of them may change, and the text behind the result may not
// matter.
TEST(Evaluator, KeepsToItsStretch) {
    const FreshMachine fresh;
    for (const char *words : {"(1+2", "^2", "2^", "((\\sin 1", "\\x^2", "[[1,2", "\\Seq(X,X,1,3,1"}) {
        std::vector<ProgramCell> cells = cellsOfWords(words);
        int count = static_cast<int>(cells.size());
        cells.insert(cells.begin(), numberCell(complexReal(8)));
        cells.push_back(numberCell(complexReal(9)));
        evaluate(cells.data(), 1, count);
        EXPECT_EQ(textOfCells(&cells.front(), 1) + textOfCells(&cells.back(), 1), "89") << words;
    }
}

}  // namespace
}  // namespace numalink
