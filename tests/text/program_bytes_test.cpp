// Typed text to bytes and back. Spellings and marks are those of the command line's session typed_text.
#include "text/program_bytes.h"

#include <gmock/gmock.h>

#include "settings/settings_store.h"
#include "support/ui_recorder.h"
#include "text/auto_correct.h"
#include "text/token_table.h"

namespace numalink {
namespace {

using testing::ElementsAre;

struct ProgramText : testing::Test {
    ProgramText() {
        EXPECT_TRUE(tokenTableLoad());
        settingsSetInt(setting::autoCorrect, 1);
    }

    RecordedUi ui;
};

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
