// Typed text to bytes and back, and the table behind it: small ones that hold the doubtful cases, and damaged ones.
// Spellings and marks are those of the command line's session typed_text; that look-ups agree with a plain walk in file
// order is what the fuzz target of the table tests.
#include "text/program_bytes.h"

#include <gmock/gmock.h>

#include <cstring>

#include "settings/settings_store.h"
#include "text/auto_correct.h"
#include "text/token_table.h"

namespace numalink {
namespace {

using testing::Optional;

struct ProgramText : testing::Test {
    ProgramText() {
        EXPECT_TRUE(tokenTableLoad());
        settingsSetInt(setting::autoCorrect, 1);
    }
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
    Bytes back = {':'};
    ASSERT_EQ(lineFromText(text, back), -1);
    EXPECT_EQ(back, Bytes(image.begin(), image.end() - 2));
    EXPECT_EQ(programPlainText(Bytes{':', 0xFF}), "");
    EXPECT_EQ(programPlainText({}), "");
    tokenTableSet({});
    EXPECT_EQ(programPlainText(Bytes{':', 'A', 0x0D, 0xFF}), "<65> <13> ");
}

TokenRecord recordOf(std::uint8_t length, std::uint8_t byte1, std::uint8_t byte2, const char *display,
                     const char *ascii) {
    TokenRecord record{length, byte1, byte2, 0, {}, {}};
    std::strncpy(record.displayText, display, tokenTextSize - 1);
    std::strncpy(record.asciiText, ascii, tokenTextSize - 1);
    return record;
}

void setTable(const std::vector<TokenRecord> &records) {
    tokenTableSet({reinterpret_cast<const std::uint8_t *>(records.data()), records.size() * tokenRecordSize});
}

TEST(TokenTable, FileOrderDecides) {
    setTable({recordOf(1, 0x7F, 0, "one", "One"), recordOf(2, 0x7F, 0x41, "pair", "Pair"),
              recordOf(1, 0x41, 0, "A", "A"), recordOf(1, 0x42, 0, "B", "A"), recordOf(2, 0xF7, 1, "Then", ""),
              recordOf(2, 0xF7, 1, "Then ", "\\Then ")});
    std::string_view text;
    EXPECT_EQ(tokenToText(Bytes{0x7F, 0x41}, text), 1) << "the one-byte record stands first";
    EXPECT_EQ(text, "one");
    EXPECT_EQ(tokenToText(Bytes{0xF7}, text), 0) << "half a pair";
    EXPECT_EQ(text, "");
    EXPECT_EQ(asciiToToken("A")->byte1, 0x41);

    int length = 0;
    EXPECT_THAT(tokenToAscii(Bytes{0x7F, 0x41}, length), Optional(std::string_view("Pair")));
    EXPECT_EQ(tokenToAscii(Bytes{0xF7, 1}, length), std::nullopt) << "the first match has no word";
    EXPECT_EQ(length, 2);
    EXPECT_EQ(tokenToAscii(Bytes{0x7F}, length), std::nullopt);
    EXPECT_EQ(length, 2);
}

TEST(TokenTable, DamagedTables) {
    Bytes file(45, 'x');
    tokenTableSet(file);
    EXPECT_EQ(tokenCount(), 0u) << "length 'x' is none";
    file[0] = 1;
    tokenTableSet(file);
    ASSERT_EQ(tokenCount(), 1u);
    EXPECT_EQ(tokenRecord(0).glyph, 'x');
    EXPECT_EQ(std::strlen(tokenRecord(0).asciiText), 19u) << "a text without end is cut";
    const TokenRecord record = recordOf(1, 1, 0, "a", "a");
    setTable(std::vector<TokenRecord>(900, record));
    EXPECT_EQ(tokenCount(), tokenRecordLimit);
    tokenTableSet({});
    std::string_view text;
    EXPECT_EQ(tokenToText(Bytes{'A'}, text), 0);
    EXPECT_EQ(asciiToToken("A"), nullptr);
}

}  // namespace
}  // namespace numalink
