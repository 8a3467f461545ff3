// Expressions against their values: every token of the language, precedence, direction, and what faults leave.
#include "emulator/evaluator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "emulator/expressions.h"
#include "emulator/key_port.h"
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

// One case at least for every row of the operators, each telling it from its neighbours.
TEST(Evaluator, ComputesEveryFunction) {
    expectAll(R"(
        \Getkey: 47                 \{i}: 0+1i                  \Pi: 3.14159265359          \Arg \{i}: 1.57079632679
        \Arg B: 0.982793723247      \Conj B: 2-3i               \ReP B: 2                   \ImP B: 3
        3\x^2: 9                    \{i}\x^2: -1                B\x^2: -5+12i               8\x^-1: 0.125
        2^10: 1024                  2^.5: 1.41421356237         0^0: 1                      3\xrt27: 3
        2^(\(-)1): 2                B/\{i}: 3-2i                B\x^-1: 0.153846153846-0.230769230769i
        2\xrt9: 3                   \sin 90: 0.893996663601     \cos 1: 0.540302305868      \tan 1: 1.55740772465
        \In 2: 0.69314718056        \sqrt2: 1.41421356237       \(-)B: -2-3i                \(-)3: -3
        \asin .5: 0.523598775598    \acos .5: 1.0471975512      \atan 2: 1.10714871779      \log 1000: 3
        \curt27: 3                  \Abs (3+4\{i}): 5           \sinh 1: 1.17520119364      \cosh 1: 1.54308063482
        \tanh 1: 0.761594155956     \Int 2.7: 2                 \Int (\(-)2.7): -2          \Int (2.5+3.5\{i}): 2+3i
        \Int 3000000000: -1294967296                            \Frac 2.5: 0.5              \Frac (\(-)2.75): -0.75
        \Frac (2.5+3.25\{i}): 0.5+0.25i                         \Intg 3000000000.5: 3000000000
        \Intg (\(-)2.7): -3         \Intg (1.5+\{i}*\(-)2.5): 1-3i                          \ Not 0: 1
        \ Not 2: 0                  \Not \{i}: 1                \Not 2: 0                   2*3: 6
        B*B: -5+12i                 7/2: 3.5                    1\ab/c2\ab/c4: 0.125        +B: 2+3i
        -B: -2-3i                   5+B: 7+3i                   5-B: 3-3i                   1\<=1: 1
        2\<=1: 0                    1\<>1: 0                    2\<>1: 1                    1\>=1: 1
        0\>=1: 0                    1<2: 1                      2<2: 0                      2=2: 1
        2=1: 0                      1+\{i}=1: 1                 3>2: 1                      2>2: 0
        5\ And 3: 1                 4\ And 3: 1                 4\ And 0: 0                 5\and3: 1
        4\and3: 0                   \(-)1\and6: 6               0\ Or 0: 0                  0\ Or 2: 1
        2\ Or 0: 1                  4\or3: 7                    4294967301\or2: 7           .A: 0
        .\List 1: {0,0,0}           A: 5                        AB: 10+15i                  \r: 0
        \theta: 0                   \Ans: 0                     \f1: 0
    )");
    const double random = std::stod(evaluated("\\Ran#"));  // its sequence has no start to go back to
    EXPECT_TRUE(random >= 0 && random <= 1) << random;
    EXPECT_NE(random, std::stod(evaluated("\\Ran#")));
}

// A variable of each name holds a number of its own, so that no name can stand for another.
TEST(Evaluator, ReadsEveryVariable) {
    const FreshMachine fresh;
    for (int i = 0; i < variableCount; i++) machine.variables[static_cast<std::size_t>(i)] = complexMake(100 + i, 1);
    machine.ans = complexReal(200);
    for (int i = 0; i < windowValueCount; i++) machine.window[static_cast<std::size_t>(i)] = complexReal(300 + i);
    for (int letter = 0; letter < 26; letter++)
        EXPECT_EQ(evaluated(fresh, cellsOfWords(std::string(1, static_cast<char>('A' + letter)))),
                  std::to_string(100 + letter) + "+1i");
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\r,\\theta,\\Ans")), "126+1i <2C> 127+1i <2C> 200");
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\Xmin,\\Xmax,\\Xscl,\\Ymin,\\Ymax,\\Yscl,\\Tmin,\\Tmax,\\Tptch")),
              "300 <2C> 301 <2C> 302 <2C> 303 <2C> 304 <2C> 305 <2C> 306 <2C> 307 <2C> 308");
    EXPECT_EQ(evaluated(fresh, {tokenCell({0x7F, 0x03}), tokenCell({0x7F, 0x07}), tokenCell({0x7F, 0x0B})}),
              "<7F03> <7F07> <7F0B>");
}

TEST(Evaluator, FollowsThePassesAndTheirDirections) {
    expectAll(R"(
        7: 7                        1+2*3: 7                    (1+2)*3: 9
        2^3^2: 64                   2\sin 3: 0.28224001612      \sin 3\cos 2: -0.0587266449276
        \sin \cos 1: 0.514395258524                             \(-)2^2: -4                 \(-)2\x^2: -4
        \sqrt2A\x^2: 7.07106781187
        \ReP 2^3: 8                 \sin 2A: -0.544021110889    \sin A^2: -0.132351750098   -2*3: -6
        2*\(-)3: -6                 2\(-)3: -6                  --3: 3                      3--2: 5
        3---2: 1                    +-+4: -4                    10-3-2: 5                   24/4/2: 3
        2(3+4): 14                  (2)(3): 6                   2A: 10                      1<2<3: 1
        3>2>1: 0                    1\ Or 0\ And 0: 1           6\or8\and12: 14             1+1=2: 1
        3\x^2\x^-1: 0.111111111111                              2\List 1[3]\x^2: 144        5\x^2A: 125
        A\x^2B: 50+75i              2^3A: 40                    \Not 0+1: 2                 \sqrt4+5: 7
        \Abs \(-)3: 3               1-1\<=0: 1                  (1+2: 3                     ((1: 1
        (1,2): 1 <2C> 2             ( 1, 2: <20> 1 <2C> <20> 2                              ():
        2((3)(4: 24                 1 +2: 1 <20> 2              (\(-)2)^3: 8
    )");
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

TEST(Evaluator, LeavesTheSequenceVariablePastTheEndAndNothingElseAfterAFault) {
    const FreshMachine fresh;
    ComplexValue &x = machine.variables['X' - 'A'];
    x = complexMake(9, 9);
    evaluated(fresh, cellsOfWords("\\Seq(X,X,1,3,0)"));
    EXPECT_EQ(x.im, 9) << "wrong fields must not touch the variable";
    EXPECT_EQ(evaluated(fresh, cellsOfWords("X+\\Seq(X,X,1,3,1)")), "4 !Syn !Arg") << "read after the loop";
    EXPECT_EQ(x.re, 4);
    EXPECT_EQ(x.im, 0);
}

TEST(Evaluator, EvaluatesStoredFunctionsAnewAndStopsTheirCircles) {
    const FreshMachine fresh;
    programAdd("f1", imageOfWords("A+1"));
    programAdd("f10", imageOfWords("7"));
    programAdd("f2", imageOfWords("\\f1*2"));
    programAdd("f3", imageOfWords("{1,2}"));
    programAdd("f6", imageOfWords("6"));
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\f2")), "2");
    machine.variables[0] = complexReal(10);
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\f1\\f2")), "242") << "values side by side multiply";
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\Sum \\f3")), "3");
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\f6,\\f5")), "6 <2C> 0");
    programAdd("f4", imageOfWords("\\f5+1"));
    programAdd("f5", imageOfWords("\\f4+1"));
    EXPECT_EQ(evaluated(fresh, cellsOfWords("\\f4")), "2 !Syn");
    const FreshMachine second;
    programAdd("f1", imageOfWords(""));
    programAdd("f2", imageOfWords("\\sin "));
    EXPECT_TRUE(evaluated(second, cellsOfWords("\\f1+1")).ends_with(" !Syn"));
    EXPECT_EQ(evaluated(second, cellsOfWords("\\f2(2)")).substr(0, 14), "0.909297426826")
        << "a token may be the result, and acts";
}

TEST(Evaluator, AsksInnerParenthesesFirst) {
    const FreshMachine fresh;
    keyPort.beforeWaitTest = [] {
        static int pass = 0;
        static constexpr int keys[] = {72, 31, 62, 31};  // 1, then 2
        keyCode = keys[pass++ % 4];
        return true;
    };
    EXPECT_EQ(evaluated(fresh, cellsOfWords("10*?+(?)")), "21");
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
