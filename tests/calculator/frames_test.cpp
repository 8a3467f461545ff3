// Lengths, marks and images at their edges, and the record that stands for a head. Heads as a whole are those of the
// recordings in tests/lines.
#include "calculator/frames.h"

#include <gtest/gtest.h>

#include <fstream>

#include "virtual_calculator/calculator_frames.h"

namespace numalink {
namespace {

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

Bytes valueHead(std::uint8_t rows, std::uint8_t columns) {
    Bytes head = bytesOf(std::string_view(":VAL\0MT\0\0\0\0", 11));
    head[8] = rows;
    head[10] = columns;
    return head;
}

TEST(Frames, WhatAFamilyHasNotIsNotBuilt) {
    EXPECT_EQ(buildHeadFrame(kind::modelFrame, Family::cfx, {}), std::nullopt);
    EXPECT_EQ(buildHeadFrame(kind::functionMemory, Family::algebra, {}), std::nullopt);
    Bytes empty;
    frameChecksum(empty);
    EXPECT_TRUE(empty.empty());
}

TEST(Frames, LengthsAreNotCutToSixteenBits) {
    EXPECT_EQ(frameDataLength(valueHead(3, 1)), 48u);
    EXPECT_EQ(frameDataLength(valueHead(255, 255)), 255u * 255u * 16u);
    Bytes picture(50, 0xFF);
    std::ranges::copy(std::string_view(":IMG\0PC", 7), picture.begin());
    EXPECT_EQ(frameDataLength(picture), 0xFFFFull * 0xFFFF * (0xFFFFull * 0xFFFF / 8 + 6));
    EXPECT_EQ(frameDataLength(ByteView(picture).first(35)), 0u);
    EXPECT_EQ(frameDataLength(bytesOf(":DD\x40\x80")), 1026u);
    EXPECT_EQ(frameDataLength(bytesOf(":DC\x40\x80")), 3081u);
    EXPECT_EQ(frameDataLength(bytesOf(":DC\x40")), 0u);
    EXPECT_EQ(frameDataLength({}), 0u);
}

TEST(Frames, MarksNeedAllTheirBytes) {
    EXPECT_EQ(classifyFrame(bytesOf("ENDLESS")), kind::endOfTransmission);
    EXPECT_EQ(classifyFrame(bytesOf(std::string_view("MEM\0GM", 6))), kind::graphMemory);
    EXPECT_EQ(classifyFrame(bytesOf(std::string_view("TXT\0P", 5))), kind::unknown);
    EXPECT_EQ(classifyFrame(bytesOf("D")), kind::unknown);
}

TEST(ProgramInfo, TextsWithoutEndAreCut) {
    Bytes head(programInfoSize, 'x');
    EXPECT_EQ(decodeProgramInfo(head)->name, "xxxxxxxx");
    EXPECT_EQ(decodeProgramInfo(ByteView(head).first(31)), std::nullopt);
    const Bytes encoded = encodeProgramInfo({.imageLength = 0x01020304, .name = "TOO LONG A NAME", .password = ""});
    EXPECT_EQ(encoded[16], 0) << "the ninth byte ends the name";
    EXPECT_EQ(readLittle32(encoded, 4), 0x01020304u);
}

TEST(ProgramInfo, AnImageEndsAtATokenBoundary) {
    const Bytes image = {':', 'A', 0x7F, 0x00, 0xF7, 0xFF, 'B', 0xFF, 0x12};
    EXPECT_EQ(programTokens(image).size(), 6u);
    EXPECT_EQ(programTokens(ByteView(image).first(3)).size(), 2u) << "a prefix at the very end";
    EXPECT_EQ(programTokens(Bytes{':', 'A', 0xF7, 0xFF, 0x12}).size(), 2u) << "a lone prefix ahead of the end mark";
    EXPECT_EQ(programTokens(Bytes{':', 'A', 0x7F, 0xFF}).size(), 2u);
    EXPECT_TRUE(programTokens({}).empty());
    EXPECT_EQ(imageWithChecksumPlace(Bytes{':', 'A', 0xFF}), (Bytes{':', 'A', 0xFF, 0}));
    EXPECT_EQ(imageWithChecksumPlace(Bytes{':', 'A', 0xFF, 0xFF}), (Bytes{':', 'A', 0xFF, 0xFF}));
    EXPECT_EQ(imageWithChecksumPlace(Bytes{':', 0x7F, 0xFF, 'A', 0xFF, 9}), (Bytes{':', 0x7F, 0xFF, 'A', 0xFF, 9}));
    EXPECT_EQ(imageWithChecksumPlace(Bytes{':'}), (Bytes{':', 0xFF, 0}));
}

// The sample dumps hold to the rules as the calculator of the tests knows them: every head and data frame sums up, and
// the closing frame ends the file.
TEST(SampleFrames, DumpsAreWholeAndSummedUp) {
    for (const auto &[name, count] : {std::pair("plots.cas", 15u), {"values.cas", 6u}}) {
        std::ifstream input(std::string(NUMALINK_SAMPLES "/") + name, std::ios::binary);
        const Bytes dump{std::istreambuf_iterator<char>(input), {}};
        Bytes again;
        const std::vector<calculator::Item> items = calculator::itemsOf(dump);
        EXPECT_EQ(items.size(), count) << name;
        for (const calculator::Item &item : items) {
            EXPECT_TRUE(calculator::isGood(item)) << name << " at " << again.size();
            again.insert(again.end(), item.head.begin(), item.head.end());
            again.insert(again.end(), item.data.begin(), item.data.end());
        }
        const Bytes closing = calculator::closingFrame(false);
        again.insert(again.end(), closing.begin(), closing.end());
        EXPECT_EQ(again, dump) << name;
    }
}

}  // namespace
}  // namespace numalink
