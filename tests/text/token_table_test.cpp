// The look-ups against the shipped table, against small tables that hold the doubtful cases, and against the plain
// walk in file order that they must agree with.
#include "text/token_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "text/program_bytes.h"

namespace numalink {
namespace {

using testing::ElementsAre;
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

// What asciiToToken has to agree with.
const TokenRecord *plainWalk(std::string_view text) {
    const TokenRecord *best = nullptr;
    std::size_t bestLength = 0;
    for (std::size_t i = 0; i < tokenCount(); i++) {
        const std::string_view word = tokenRecord(i).asciiText;
        if (word.size() <= bestLength || !text.starts_with(word)) continue;
        best = &tokenRecord(i);
        bestLength = word.size();
    }
    return best;
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

TEST(TokenTable, ShippedTableAgreesWithThePlainWalk) {
    ASSERT_TRUE(tokenTableLoad());
    ASSERT_EQ(tokenCount(), 654u);
    EXPECT_EQ(asciiToToken("\\WhileEnd")->byte2, 0x09);
    std::mt19937 chance(7);
    std::string text;
    for (int i = 0; i < 3000; i++) {
        const TokenRecord &record = tokenRecord(chance() % tokenCount());
        const std::string_view word = record.asciiText;
        text += word.substr(0, chance() % 3 == 0 ? chance() % (word.size() + 1) : word.size());
        if (chance() % 8 == 0) text += static_cast<char>(chance() % 256);
    }
    for (std::size_t i = 0; i < text.size(); i++) {
        const std::string_view rest = std::string_view(text).substr(i, 1 + chance() % 40);
        ASSERT_EQ(asciiToToken(rest), plainWalk(rest)) << rest;
    }
}

TEST(TokenTable, EveryPairOfBytesSurvivesWords) {
    ASSERT_TRUE(tokenTableLoad());
    for (std::size_t i = 0; i < tokenCount(); i++) {
        const TokenRecord &record = tokenRecord(i);
        Bytes tokens = {record.byte1, record.byte2, 'A'};
        if (record.length == 1) tokens[1] = 'B';
        Bytes back;
        EXPECT_EQ(tokensFromWords(wordsFromTokens(tokens), back), -1);
        EXPECT_EQ(back, tokens) << i;
    }
}

TEST(ExchangeWords, LineEndsAndEscapes) {
    ASSERT_TRUE(tokenTableLoad());
    Bytes tokens;
    EXPECT_EQ(tokensFromWords("A\r\r\nB\nC\r\n\r\n", tokens), -1);
    EXPECT_THAT(tokens, ElementsAre('A', 0x0D, 'B', 'C', 0x0D, 0x0D));
    tokens.clear();
    EXPECT_EQ(tokensFromWords("\\Xmin\\\x90?\xE9", tokens), 8) << "a high byte without a backslash is nothing";
    EXPECT_THAT(tokens, ElementsAre(0x7F, 0x00, 0x90, '?'));
    EXPECT_EQ(tokensFromWords("A\\", tokens), 1);
    EXPECT_EQ(wordsFromTokens(Bytes{0x7F, 0x00, 0x0D, 0x90, 0x7F}), "\\Xmin\r\n\\\x90\\\x7F");
}

}  // namespace
}  // namespace numalink
