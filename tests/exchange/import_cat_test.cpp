// The text exchange format: good records, and each way in which a file can be wrong.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "exchange/import.h"
#include "exchange/reader_calls.h"
#include "support/cat_records.h"

namespace numalink {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// "|" stands for a line end.
std::string lines(std::string text) {
    for (std::size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2) text.replace(at, 1, "\r\n");
    return text;
}

std::string programRecord(const std::string &name, const std::string &text) {
    return lines("%Header Record|Format:TXT|Communication SW:0|Data Type:PG|Capacity:9|File Name:" + name +
                 "|Group Name:|Password:SECRET|Option1:NL|%Data Record|") +
           text + lines("|%End|");
}

std::string valuesRecord(int rows, int columns, const std::string &values) {
    return catValues("MT", "Mat A", rows, columns, lines(values));
}

std::string pictureRecord(const std::string &sizes, const std::string &planes) {
    return lines("%Header Record|Format:IMG|Data Type:PC|Data Name:Picture1|" + sizes + "|%Data Record|" + planes +
                 "%End|");
}

using ImportCat = Exchange;

Bytes tokensOf(const ImportedItem &item) {
    const ByteView tokens = programTokens(item.data);
    return {tokens.begin(), tokens.end()};
}

TEST_F(ImportCat, AProgramArrivesWhole) {
    const ReadResult read = readWith(readCat, programRecord("SNAKE", "\\If A=1\r\n\"OK\"\r\r\n"));
    ASSERT_EQ(read.taken.size(), 1u);
    EXPECT_TRUE(read.messages.empty());
    const ImportedItem &item = read.taken[0];
    EXPECT_EQ(item.name, "SNAKE");
    EXPECT_THAT(tokensOf(item), ElementsAre(0xF7, 0x00, 'A', '=', '1', 0x0D, '"', 'O', 'K', '"', 0x0D))
        << "two CR and a LF are one line end; the record's own last one goes";
    const auto info = decodeProgramInfo(item.head);
    EXPECT_EQ(info->imageLength, item.data.size());
    EXPECT_EQ(info->password, "SECRET");
    EXPECT_TRUE(frameIsGood(item.data));
}

TEST_F(ImportCat, OnlyAnEndMarkAloneOnItsLineEnds) {
    const ReadResult read = readWith(readCat, programRecord("A", "\"5%endless\"\r\n%End of it\r\nB"));
    ASSERT_EQ(read.taken.size(), 1u);
    EXPECT_EQ(tokensOf(read.taken[0]).size(), 24u);
    EXPECT_EQ(readWith(readCat, lines("%HEADER record|data type:PG|capacity:1|%data RECORD|A%eND")).taken.size(), 1u)
        << "without case, in the middle of a line, at the file's end";
}

TEST_F(ImportCat, TheSecondByteOfAPairStays) {
    for (const auto &[text, size] : {std::pair{"\\Xmin", 2u}, {"\\Break", 2u}, {"A\\Break\r\n", 4u}}) {
        const ReadResult read = readWith(readCat, programRecord("A", text));
        ASSERT_EQ(read.taken.size(), 1u);
        EXPECT_EQ(read.taken[0].data.size(), size + 3) << text;
    }
}

TEST_F(ImportCat, FilesOfOtherSystems) {
    std::string unixFile = programRecord("ONE", "A\r\nB") + programRecord("TWO", "C");
    std::erase(unixFile, '\r');
    const ReadResult read = readWith(readCat, unixFile);
    ASSERT_EQ(read.taken.size(), 2u);
    EXPECT_THAT(tokensOf(read.taken[0]), ElementsAre('A', 0x0D, 'B'));

    const ReadResult apart =
        readWith(readCat, programRecord("ONE", "A") + lines("|| |") + programRecord("Ü23456789", "B") + "\x1A");
    EXPECT_TRUE(apart.messages.empty()) << "blank lines and an old end of file are nothing";
    ASSERT_EQ(apart.taken.size(), 2u);
    EXPECT_EQ(apart.taken[1].name, "U23456789") << "nine characters of a name saved as UTF-8";
    EXPECT_EQ(readWith(readCat, programRecord("\xCE\xDE", "A")).taken[0].name, "\xCE\xDE") << "calculator codes stay";
}

TEST_F(ImportCat, UnknownRecordsAreSkipped) {
    const std::string unknown = lines("%Header Record|Format:XYZ|Data Type:QQ|%Data Record|Any: thing|%End|");
    const ReadResult read = readWith(readCat, programRecord("ONE", "A") + unknown + programRecord("TWO", "B"));
    EXPECT_EQ(read.taken.size(), 2u);
    EXPECT_EQ(read.unknownRecords, 1u);
    EXPECT_TRUE(read.messages.empty());
    EXPECT_EQ(readWith(readCat, lines("%Header Record|Format:txt|Data Type:FM|%Data Record|%End|")).unknownRecords, 1u);
}

TEST_F(ImportCat, WhatEndsTheReadingIsTold) {
    const std::string good = programRecord("GOOD", "A");
    struct {
        std::string tail;
        int number;
    } const cases[] = {
        {lines("%Header Record|File Name:TOOLONGNAME|"), 100},
        {lines("%Header Record|Data Type:PG|Capacity:0|%Data Record|A|%End|"), 100},
        {"%Header Record\r\nFormat:TXT", 100},
        {lines("%Header Record|Data Type:PG|Capacity:1|%Data Record|A|"), 100},
        {lines("%Header Record|Data Type:ZZ|%Data Record|A|"), 100},
        {lines("%Header Record|Nonsense|"), 98},
        {programRecord("BAD", "A\xE9"), 96},
        {programRecord("BAD", "A\\").substr(0, programRecord("BAD", "A\\").size() - 8), 96},
    };
    for (const auto &each : cases) {
        const ReadResult read = readWith(readCat, good + each.tail);
        EXPECT_EQ(read.taken.size(), 1u);
        EXPECT_THAT(numbersOf(read), testing::Contains(each.number)) << each.tail;
    }
    const std::string open = good.substr(0, good.size() - 6);
    EXPECT_THAT(numbersOf(readWith(readCat, open + good)), ElementsAre(100)) << "two programs never become one";
    const ReadResult read = readWith(readCat, good + lines("%Header Record|File Name:NAMED|Capacity:1234567890|"));
    EXPECT_THAT(read.messages[0].body, HasSubstr("2, NAMED"));
    EXPECT_THAT(numbersOf(readWith(readCat, good + lines("lost line|") + good)), ElementsAre(165));
}

TEST_F(ImportCat, ValuesGoToTheirPlaces) {
    const ReadResult read =
        readWith(readCat, valuesRecord(2, 2, "Value : 2 1 -0.25|Value : 1 2 1.5\\EE+3|Value : 1 1 1|Value : 2 2 7|"));
    ASSERT_EQ(read.taken.size(), 1u);
    EXPECT_TRUE(read.messages.empty());
    const ImportedItem &item = read.taken[0];
    EXPECT_EQ(item.itemKind, kind::matrix);
    EXPECT_EQ(copyFrameName(ByteView(item.head).subspan(frameNameOffset)), "Mat A");
    const double expected[] = {1, 1500, -0.25, 7};
    for (std::size_t i = 0; i < 4; i++) {
        const auto frame = ByteView(item.data).subspan(i * valueFrameSize).first<valueFrameSize>();
        EXPECT_DOUBLE_EQ(decodeValue(frame), expected[i]);
        EXPECT_EQ(readBig16(frame, 1), i / 2 + 1);
        EXPECT_EQ(readBig16(frame, 3), i % 2 + 1);
    }
}

TEST_F(ImportCat, BadAndMissingValuesAreTold) {
    const ReadResult read =
        readWith(readCat, valuesRecord(2, 2, "Value : 1 1 1\\EE+100|Value : 3 1 5|Value 1|Value : 2 2 1,5|"));
    ASSERT_EQ(read.taken.size(), 1u);
    EXPECT_EQ(read.taken[0].data.size(), 64u);
    ASSERT_EQ(read.messages.size(), 2u);
    EXPECT_THAT(read.messages[0].body, HasSubstr("4. Row and column: 1, 1; 3, 1; \"Value 1\"; 2, 2"));
    EXPECT_THAT(read.messages[1].body, HasSubstr("2, the first in row 1, column 2"));
}

TEST_F(ImportCat, SizesThatLieAreRefusedAndTheRestIsRead) {
    const std::string good = programRecord("GOOD", "A");
    for (const std::string &bad :
         {valuesRecord(0, 2, "Value : 1 1 1|"), valuesRecord(65536, 1, ""), valuesRecord(255, 255, ""),
          programRecord("HUGE", std::string(importItemLimit, 'A')),
          pictureRecord("Height:8|Width:8|Colors:1|Sheets:1", "Sheet:1|Color:1|"),
          pictureRecord("Height:65535|Width:65535|Colors:65535|Sheets:65535", "Sheet:1|Color:1|00|"),
          pictureRecord("Height:0|Width:8|Colors:1|Sheets:1", "")}) {
        const ReadResult read = readWith(readCat, bad + good);
        EXPECT_THAT(numbersOf(read), ElementsAre(165)) << bad;
        ASSERT_EQ(read.taken.size(), 1u) << bad;
    }
}

TEST_F(ImportCat, APictureHasItsPlanes) {
    const std::string row = "0123456789abcdefFEDCBA9876543210|";
    const std::string plane = row + row;
    const std::string sizes = "Height:16|Width:16|Colors:2|Sheets:1";
    const ReadResult read =
        readWith(readCat, pictureRecord(sizes, "Sheet:1|Color:1|" + plane + "Sheet:1|Color:2|" + plane));
    ASSERT_EQ(read.taken.size(), 1u);
    const ImportedItem &item = read.taken[0];
    EXPECT_EQ(item.data.size(), 76u);
    EXPECT_EQ(Bytes(item.data.begin(), item.data.begin() + 7), (Bytes{':', 0, 1, 0, 1, 0x01, 0x23}));
    EXPECT_EQ(item.data[38 + 4], 2);
    EXPECT_EQ(std::string(item.head.begin() + 27, item.head.begin() + 32), "DRUWF");
    EXPECT_EQ(readWith(readCat, pictureRecord("Communication SW:1|" + sizes,
                                              "Sheet:1|Color:1|" + plane + "Sheet:1|Color:2|" + plane))
                  .taken.size(),
              1u)
        << "a mark with a number in it";
    EXPECT_TRUE(readWith(readCat, pictureRecord(sizes, "Sheet:1|Color:1|" + plane + plane)).taken.empty())
        << "no second sheet line";
}

}  // namespace
}  // namespace numalink
