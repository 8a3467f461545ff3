// What the readers of a program find: partners, depths, outline, uses, renaming, and the way between text and bytes.
#include "language/structure.h"
#include "language/program_words.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "calculator/charset.h"
#include "calculator/frames.h"
#include "language/completion.h"
#include "language/outline.h"
#include "language/program_text.h"
#include "language/references.h"
#include "text/lenient_text.h"
#include "text/program_bytes.h"
#include "text/token_table.h"

namespace numalink {
namespace {

struct Structure : testing::Test {
    Structure() { EXPECT_TRUE(tokenTableLoad()); }
};

TEST_F(Structure, PartnersAndDepths) {
    const ProgramStructure program = structureOf(
        imageOf("\\If (A+\\Max(1)\r\\Then \"(\"\r\\Do\r1\r\\LpWhile B\r\\Else 2\r\\IfEnd\r\\For 1\\->A\\To 2:\\Next "));
    EXPECT_EQ(depthOfLines(program), (std::vector<int>{0, 0, 1, 2, 1, 0, 0, 0}));
    EXPECT_EQ(togetherWith(program, 0).size(), 4u);
    const auto text = [&](std::size_t token) { return textOfTokens(program, token, 1); };
    std::string pairs;
    for (std::size_t i = 0; i < program.tokens.size(); i++)
        if (program.partners[i] != noToken && program.partners[i] > i)
            pairs += text(i) + text(program.partners[i]) + " ";
    EXPECT_EQ(pairs, "Max() \"\" ");
    EXPECT_TRUE(togetherWith(program, 1).empty());
}

TEST_F(Structure, LinesThatFold) {
    const std::pair<const char *, std::vector<FoldableLines>> cases[] = {
        {"\\If A\r\\Then 1\r\\Else 2\r\\IfEnd", {{0, 3}}},
        {"\\If A\r\\IfEnd", {}},  // nothing in between
        {"\\Do\r\\While A\r1\r2\r\\WhileEnd\r\\LpWhile B", {{0, 5}, {1, 4}}},
        {"\\For 1\\->A\\To 2:\\For 1\\->B\\To 2\r1\r\\Next\r2\r\\Next ", {{0, 4}}},  // of one line the longest
        {"\\If A\r\\Then 1\r\\IfEnd:\\While A\r1\r\\WhileEnd", {{0, 2}, {2, 4}}},
        {"\\While A\r1\r2", {}},                    // open to the end
        {"\\Do:A\\Disp:B\r\\LpWhile A", {{0, 2}}},  // a display command ends its line
    };
    for (const auto &[words, expected] : cases)
        EXPECT_EQ(foldableLines(structureOf(imageOf(words))), expected) << words;
}

TEST_F(Structure, OutlineInTheOrderOfTheProgram) {
    const ProgramStructure program =
        structureOf(imageOf("'HEAD\r\\Lbl 12\r\\Prog \"SUB\"\r\\@F79E\"PICK\",\"A\",12:\"'NO\""));
    std::string told;
    for (const OutlineEntry &entry : outlineOf(program))
        told += std::to_string(static_cast<int>(entry.kind)) + entry.text + " ";
    EXPECT_EQ(told, "0HEAD 112 2SUB 3PICK ");
}

TEST_F(Structure, UsesOfNames) {
    const std::pair<const char *, const char *> cases[] = {
        // The token at the first byte of the last statement names what is looked for.
        {"1\\->A:A+\\Mat A:\\Lbl A:\\Isz A:\"A\":A", "w0 r1 w3 r5"},
        {"\\Goto1:\\Lbl 01:1\\->B:\\Lbl 1", "r0 d1 d3"},
        {"1\\->\\List 2[1]:\\List2:\\List 12:\\List 2", "w0 r1 r3"},
        {"1\\->\\Mat B[1,1]:B:\\Mat B", "w0 r2"},
        {"1\\->A~F:F~G+1:F", "w0 r1 r2"},
        {"\\Prog \"A-B\":\\Prog \"C\":\\Prog \"a-b\"", "r0 r2"},
    };
    for (const auto &[words, expected] : cases) {
        const ProgramStructure program = structureOf(imageOf(words));
        const auto name = nameAt(program, program.statements.back().first);
        ASSERT_TRUE(name) << words;
        std::string told;
        for (const NameUse &use : usesOf(program, *name))
            told += (told.empty() ? "" : " ") + std::string(1, "rwd"[static_cast<int>(use.kind)]) +
                    std::to_string(statementOf(program, use.first));
        EXPECT_EQ(told, expected) << words;
    }
}

TEST_F(Structure, RenamesCallsAndKnowsFreeLabels) {
    const Bytes image = imageOf("\\Goto1:\\Lbl 1:\\@F79E\"T\",\"1\",1:\\Lbl 2:\\Prog \"AB\":\\Prog \"\"");
    const ProgramStructure program = structureOf(image);
    EXPECT_TRUE(labelIsFree(program, {true, 1}, *labelTokens("A")));
    EXPECT_TRUE(labelIsFree(program, {true, 1}, *labelTokens("01")));
    EXPECT_FALSE(labelIsFree(program, {true, 1}, *labelTokens("2")));
    EXPECT_FALSE(labelTokens("AB") || labelTokens("") || labelTokens("1.5"));
    EXPECT_EQ(wordsOf(withCallsRenamed(image, "ab", "LONGER")),
              "\\Goto1:\\Lbl 1:\\@F79E\"T\",\"1\",1:\\Lbl 2:\\Prog \"LONGER\":\\Prog \"\"");
    EXPECT_EQ(withCallsRenamed(image, "NONE", "X"), image);
    Bytes summed = image;
    summed.push_back(0);
    const Bytes renamed = withCallsRenamed(summed, "AB", "C");
    Bytes again = renamed;
    frameChecksum(again);
    EXPECT_EQ(again, renamed);
}

TEST_F(Structure, EveryByteHasItsPlaceOnView) {
    const ProgramText text = programText(imageOf("A\\->B\\Disp\\If C\r\r\\Locate 1,2,\"\\IfEnd\""));
    for (const TextLine &line : text.lines) {
        std::size_t at = line.at;
        for (const ViewToken &token : line.reading.tokens) {
            const TextPlace place = placeOfByte(text, at);
            EXPECT_EQ(place.character, token.from);
            EXPECT_EQ(byteOfPlace(text, place), at);
            at += token.length;
        }
    }
    EXPECT_EQ(text.lines.size(), 3u);
}

std::string offered(std::string_view typed) {
    const ViewLine line = typedLine(typed);
    const CompletionQuery query = completionQuery(line, readLine(line, true), line.text.size());
    const ProgramStructure program = structureOf(imageOf("\\Lbl 1:\\Lbl A:\\Lbl 1:\\Mat C:\\List5:\\List 3"));
    std::string told;
    for (const Completion &each : completionsOf(query, program, {"SNAKE", "SUB"}))
        if (told.size() < 24) told += utf8FromCalculator(each.shown) + " ";
    return query.letters + "|" + told;
}

TEST_F(Structure, CompletesWhatIsMeant) {
    EXPECT_EQ(offered("1+2:Loc").substr(0, 11), "Loc|Locate ");
    EXPECT_EQ(offered("cltx").substr(0, 13), "cltx|ClrText ");
    EXPECT_EQ(offered("wend").substr(0, 14), "wend|WhileEnd ");
    EXPECT_EQ(offered("A\xE2\x86\x92"
                      "B:If")
                  .substr(0, 12),
              "If|If IfEnd ");
    EXPECT_EQ(offered("A"), "A|");
    const ViewLine command = viewLines(imageOf("\\If ")).front();
    EXPECT_EQ(completionQuery(command, readLine(command, true), command.text.size()).letters, "If")
        << "ahead of the blank that a command shows";
    EXPECT_EQ(offered("Goto "), "|1 A ");
    EXPECT_EQ(offered("Prog \"s"), "s|SUB SNAKE ");
    EXPECT_EQ(offered("\"Loc"), "|");
    EXPECT_EQ(offered("1+List "), "|3 5 1 2 4 6 ");
    EXPECT_EQ(offered("List 2"), "2|2 ");
    EXPECT_EQ(offered("List 7"), "7|");
    EXPECT_EQ(offered("Mat ").substr(0, 9), "|C A B D ");
    EXPECT_EQ(offered("Mat an"), "an|Ans ");
    EXPECT_EQ(offered("matb").substr(0, 11), "matb|Mat B ");
    EXPECT_EQ(offered("ma").find("Mat A"), std::string::npos) << "each by itself once the word is there";
    const CompletionQuery query{.wish = CompletionQuery::Wish::tokens, .letters = "list4", .from = 0};
    const std::vector<Completion> found = completionsOf(query, structureOf(imageOf("1")), {});
    const auto single = std::ranges::find(found, CompletionKind::list, &Completion::kind);
    ASSERT_NE(single, found.end());
    EXPECT_EQ(single->bytes, (Bytes{0x7F, 0x51, '4'}));
}

TEST_F(Structure, SignatureKnowsThePresentArgument) {
    const std::pair<const char *, const char *> cases[] = {
        {"\\Locate ", "COLUMN"},
        {"\\Locate 1,\\Max({1,2},", "LIST"},
        {"\\Locate 1,\\Max({1,2}),", "VALUE or \"TEXT\""},
        {"A\\=>\\F-Line 1,2,3", "X2"},
        {"\\Fill(1,", "List NUMBER"},
        {"\\Fill((1,2", "VALUE"},
        {"1+(2,", "none"},
    };
    for (const auto &[words, expected] : cases) {
        const ProgramStructure program = structureOf(imageOf(words));
        const auto signature = signatureAt(program, program.tokens.size());
        EXPECT_EQ(signature ? signature->syntax.substr(signature->from, signature->length) : "none", expected) << words;
    }
    const ProgramStructure tooMany = structureOf(imageOf("\\Fill(1,2,3"));
    EXPECT_EQ(signatureAt(tooMany, tooMany.tokens.size())->syntax, "Fill(VALUE,List NUMBER)") << "the first way";
}

}  // namespace
}  // namespace numalink
