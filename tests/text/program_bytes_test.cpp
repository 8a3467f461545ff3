// Typed text to bytes and back, with and without auto-correct.
#include "text/program_bytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "settings/settings_store.h"
#include "support/ui_recorder.h"
#include "text/auto_correct.h"
#include "text/token_table.h"

namespace numalink {
namespace {

using testing::ElementsAre;

class ProgramText : public testing::Test {
protected:
    ProgramText() {
        EXPECT_TRUE(tokenTableLoad());
        settingsSetInt(setting::autoCorrect, 1);
    }

    RecordedUi ui;
};

Bytes tokensOf(std::string_view text) {
    Bytes tokens;
    EXPECT_EQ(lineFromText(text, tokens), -1) << text;
    return tokens;
}

TEST_F(ProgramText, OrdinarySpellingsBecomeTokens) {
    EXPECT_THAT(tokensOf("5->A"), ElementsAre('5', 0x0E, 'A'));
    EXPECT_THAT(tokensOf("5 -> A"), ElementsAre('5', 0x0E, 'A')) << "the blanks go";
    EXPECT_THAT(tokensOf("A\x99>B"), ElementsAre('A', 0x0E, 'B'));
    EXPECT_THAT(tokensOf("A=/=B=>-C*D^E+F"),
                ElementsAre('A', 0x11, 'B', 0x13, 0x99, 'C', 0xA9, 'D', 0xA8, 'E', 0x89, 'F'));
    EXPECT_THAT(tokensOf("\"a->b-c\""), ElementsAre('"', 'a', 0x0E, 'b', 0x99, 'c', '"')) << "in strings too";
    EXPECT_THAT(tokensOf("List->Mat("), ElementsAre(0x7F, 0x4A));
    EXPECT_THAT(tokensOf("LIST->M"), ElementsAre('L', 'I', 'S', 'T', 0x0E, 'M')) << "this spelling is exact";
}

TEST_F(ProgramText, CommandsForgiveCaseOutsideOfStringsOnly) {
    EXPECT_THAT(tokensOf("whileend"), ElementsAre(0xF7, 0x09)) << "the longest display text wins";
    EXPECT_EQ(tokensOf("\"whileend").size(), 9u);
    EXPECT_EQ(tokensOf("'whileend").size(), 9u);
    EXPECT_THAT(tokensOf("'a\rwhileend"), ElementsAre('\'', 'a', 0x0D, 0xF7, 0x09)) << "a line end closes the comment";
    EXPECT_NE(tokensOf("a"), tokensOf("A"));
}

TEST_F(ProgramText, WithoutAutoCorrectOnlyPlusAndMinusAreForgiven) {
    settingsSetInt(setting::autoCorrect, 0);
    EXPECT_EQ(textToToken("+", false).byte1, 0x89);
    const TypedToken minus = textToToken("->", false);
    EXPECT_EQ(minus.used, 1);
    EXPECT_EQ(textToToken("whileend", false).used, 1);
    tokenTableSet({});
    EXPECT_EQ(textToToken("-", false).byte1, 0x99);
    EXPECT_EQ(textToToken("A", false).used, 0);
}

TEST_F(ProgramText, TextAndBytesAreTheSameProgram) {
    const Bytes image = {':', '"', 'H',  'I',  '"',  0x0C, 0xF7, 0x09, 0x0D,
                         '{', '}', 0x5C, 0x0D, 0x0D, 0x87, 'X',  0xFF, 0x00};
    const std::string text = programPlainText(image);
    EXPECT_EQ(text, "\"HI\"\xDD\r\nWhileEnd\r\n{}\\\r\n\r\n\x87X");
    Bytes back;
    ASSERT_TRUE(programFromText(text, back));
    EXPECT_EQ(back, Bytes(image.begin(), image.end() - 1));
    EXPECT_EQ(programPlainText(Bytes{':', 0xFF}), "");
    EXPECT_EQ(programPlainText({}), "");
}

TEST_F(ProgramText, UnknownBytesAreMarks) {
    EXPECT_EQ(programPlainText(Bytes{':', 'A', 0xF7, 0xF3, 0x90, 0x7F, 0xFF}), "A<247,243><144> <127> ");
    tokenTableSet({});
    EXPECT_EQ(programPlainText(Bytes{':', 'A', 0x0D, 0xFF}), "<65> <13> ");
}

TEST_F(ProgramText, ACharacterWithoutTokenIsToldWithItsLine) {
    Bytes image;
    EXPECT_FALSE(programFromText("A\r\nB\xDD\r\nC\x90", image));
    ASSERT_EQ(uiRecord.boxes.size(), 1u);
    EXPECT_EQ(uiRecord.boxes[0].bodyNumber, 18);
    EXPECT_EQ(uiRecord.boxes[0].icon, BoxIcon::error);
    EXPECT_THAT(uiRecord.boxes[0].arguments, ElementsAre("3"));
    Bytes tokens;
    EXPECT_EQ(lineFromText("AB\x90", tokens), 2);
    EXPECT_THAT(tokens, ElementsAre('A', 'B'));
}

}  // namespace
}  // namespace numalink
