// The look-ups against small tables that hold the doubtful cases, damaged tables, and the shipped one. That they agree
// with a plain walk in file order is what the fuzz target of the table tests.
#include "text/token_table.h"

#include <gmock/gmock.h>

#include <cstring>

namespace numalink {
namespace {

using testing::Optional;

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
