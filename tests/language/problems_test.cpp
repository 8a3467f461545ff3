// Each kind of problem: programs that have it and programs that nearly have it, in exchange words, with the mend where
// there is one. That the programs of samples/ and of tests/ bring no false alarm is what tests/emulator holds.
#include "language/problems.h"
#include "language/program_words.h"

#include <gtest/gtest.h>

#include "calculator/charset.h"
#include "telling/language_table.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace numalink {
namespace {

// What is found, as "kind@words of the place", joined by blanks.
std::string found(ByteView image, const ProblemContext &context) {
    std::string told;
    for (const Problem &problem : problemsOf(structureOf(image), context)) {
        told += (told.empty() ? "" : " ") + std::string(problemId(problem.kind)) + "@" +
                wordsFromTokens(image.subspan(problem.at, problem.length));
        EXPECT_EQ(problemText(problem).find("%s"), std::string::npos) << problemText(problem);
    }
    return told;
}

ProblemContext folderOf(std::initializer_list<std::pair<const char *, const char *>> programs) {
    ProblemContext context;
    context.knowsFolder = true;
    context.name = "MAIN";
    for (const auto &[name, words] : programs) context.folder.push_back(summaryOf(name, structureOf(imageOf(words))));
    return context;
}

struct Problems : testing::Test {
    Problems() {
        EXPECT_TRUE(tokenTableLoad());
        languageLoad("English", "English");
    }
};

std::string many(std::string_view words, int count) {
    std::string all;
    for (int i = 0; i < count; i++) all += words;
    return all;
}

TEST_F(Problems, AreFoundWhereTheyAreAndNowhereElse) {
    const std::pair<std::string, std::string> cases[] = {
        {"\\Goto1:\\Lbl 1", ""},
        {"\\Goto2:\\Lbl 1", "label-missing@2"},
        {"\\Goto01:\\Lbl 1", ""},
        {"\\GotoA:\\Lbl A:\"\\Goto\\B\"", ""},
        {"\\@F79E\"T\",\"X\",1,\"Y\",{1,2}[1]:\\Lbl 1", "label-missing@{"},
        {"\\@F79E\"T\",\"X\",1,\"Y\",2:\\Lbl 1", "label-missing@2"},
        {"\\Lbl 1:\\Lbl 2:\\Lbl 1:1", "label-double@\\Lbl 1"},
        {"\\If A:\\Then 1:\\Else 2:\\IfEnd", ""},
        {"\\If A:\\Then \\For 1\\->B\\To 2:\\IfEnd", "block-without-end@\\For "},
        {"\\While A:\\Do:\\LpWhile A", "block-without-end@\\While "},
        {"\\Next :\\Else 1", "block-without-start@\\Next  block-without-start@\\Else "},
        {"\"\\Next \":'\\IfEnd", ""},
        {"\\If A:1\\->B:\\IfEnd", "then-missing@1"},
        {"\\If A:\r\\Then 1:\\IfEnd", ""},
        {"\\Locate 1,2", "argument-count@\\Locate 1,2"},
        {"\\Locate 1,\\Max({1,2}),\\Max(1,2", ""},
        {"\\Locate 1,\\Max({1,2}),(1,2)", ""},
        {"A=1\\=>\\Orange \\Locate 1,2,3,4", "argument-count@\\Locate 1,2,3,4"},
        {"\\Fill(1,\\Mat A):\\Fill(1)", "argument-count@\\Fill(1"},
        {"\\Locate 17,1,\"ABCDE\"", ""},
        {"\\Locate 18,1,\"ABCDE\"", "string-too-long@\"ABCDE\""},
        {"\\Locate A,1,\"ABCDEFGHIJKLMNOPQRSTUVW\"", ""},
        {"\"" + many("X", 147) + "\"", ""},
        {"\"" + many("X", 148) + "\"", "string-too-long@\"" + many("X", 148) + "\""},
        {"\"A\r1", "string-open@\"A"},
        {"\\Stop:1\\->A:\\Lbl 1", "unreachable@1\\->A"},
        {"A\\=>\\Stop:1:\\Dsz A:\\Stop:2:\\Lbl 1", ""},
        {"\\Orange \\Goto1:1:\\Lbl 1", ""},
        {"\\If A:\\Then \\Stop:\\IfEnd:1", ""},
        {"\\If A:\\Then \\Stop:1:\\IfEnd:1", "unreachable@1"},
        {many("1+", 249) + "1", ""},
        {many("1+", 249) + "1A", ""},
        {many("1+", 250) + "1", "statement-too-long@" + many("1+", 250) + "1"},
        {"\\Orange \\Locate 1,1,2", ""},
        {"\\Mcl", "not-on-calculator@\\Mcl"},
        {"\\Prog \"ANY\":1\\->Z", ""},
    };
    for (const auto &[words, expected] : cases) EXPECT_EQ(found(imageOf(words), {}), expected) << words;
}

TEST_F(Problems, OfAFolderAndOfTheSettings) {
    const ProblemContext folder =
        folderOf({{"SUB", "A\\->B"}, {"LOOP", "\\Prog \"MAIN\""}, {"MAYBE", "A\\=>\\Prog \"MAIN\""}});
    EXPECT_EQ(found(imageOf("\\Prog \"sub\":\\Prog \"NONE\""), folder), "program-missing@\\Prog \"NONE\"");
    EXPECT_EQ(found(imageOf("1\\->A:1\\->C:?\\->D:\\For 1\\->E\\To 2:\\Next :1\\->F~G"), folder), "never-read@C");
    EXPECT_EQ(found(imageOf("\"H+1\"\\->\\Y 1:1\\->H"), folder), "");
    ProblemContext readElsewhere = folder;
    readElsewhere.readElsewhere.set(2);
    EXPECT_EQ(found(imageOf("1\\->C:1\\->D"), readElsewhere), "never-read@D");
    EXPECT_EQ(found(imageOf("1:\\Prog \"LOOP\""), folder), "calls-without-end@\\Prog \"LOOP\"");
    EXPECT_EQ(found(imageOf("\\Prog \"MAYBE\":\\If A:\\Then \\Prog \"LOOP\":\\IfEnd"), folder), "");
    ProblemContext mono;
    mono.removesColor = true;
    mono.isForCfx = false;
    EXPECT_EQ(found(imageOf("'X:\\Orange \\Locate 1,1,2:\\Mcl"), mono), "color-removed@\\Orange ");
}

TEST_F(Problems, AreMendedByWhatIsSure) {
    ProblemContext context;
    context.removesColor = true;
    const std::pair<const char *, const char *> cases[] = {
        {"\\If A:1\\->B:\\IfEnd", "\\If A:\\Then 1\\->B:\\IfEnd"},
        {"\\Lbl 1:1:\\Lbl 1:2", "\\Lbl 1:1:2"},
        {"\\Stop:1:\\Lbl 1", "\\Stop:\\Lbl 1"},
        {"\\Stop:1", "\\Stop:"},
        {"\\Green \\Plot 1,1", "\\Plot 1,1"},
        {"\"AB", "\"AB\""},
    };
    for (const auto &[words, mended] : cases) {
        Bytes image = imageOf(words);
        image.push_back(0);
        frameChecksum(image);
        const std::vector<Problem> problems = problemsOf(structureOf(image), context);
        ASSERT_TRUE(problems.size() == 1 && problems[0].mend) << words;
        Bytes made = withMend(image, *problems[0].mend);
        const std::uint8_t sum = made.back();
        frameChecksum(made);
        EXPECT_EQ(made.back(), sum);
        made.pop_back();
        EXPECT_EQ(wordsOf(made), mended);
        EXPECT_EQ(found(made, context), "") << words;
    }
}

}  // namespace
}  // namespace numalink
