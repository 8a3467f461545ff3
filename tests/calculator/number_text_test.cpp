// Numbers on their way: frame to double to text and back.
#include "calculator/number_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "calculator/frames.h"

namespace numalink {
namespace {

using testing::ElementsAre;
using Frame = std::array<std::uint8_t, valueFrameSize>;

Frame frameOf(double value, std::uint32_t row = 1, std::uint32_t column = 1) {
    Frame frame{};
    EXPECT_TRUE(encodeValue(frame, row, column, value)) << value;
    frameChecksum(frame);
    return frame;
}

TEST(NumberText, WholeFrames) {
    EXPECT_THAT(frameOf(1.5), ElementsAre(0x3A, 0, 1, 0, 1, 1, 0x50, 0, 0, 0, 0, 0, 0, 1, 0, 0xAC));
    EXPECT_THAT(frameOf(-0.25, 2), ElementsAre(0x3A, 0, 2, 0, 1, 2, 0x50, 0, 0, 0, 0, 0, 0, 0x50, 0x99, 0xC2));
    EXPECT_THAT(frameOf(0, 258, 772), ElementsAre(0x3A, 1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0xF5));
    const Frame largest = frameOf(1e99);
    EXPECT_EQ(largest[13], 0x01);
    EXPECT_EQ(largest[14], 0x99);
}

TEST(NumberText, WhatAFrameCannotHoldIsRefusedUntouched) {
    Frame frame{};
    for (const double value : {1e100, -1e-100, std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::denorm_min()})
        EXPECT_FALSE(encodeValue(frame, 1, 1, value)) << value;
    EXPECT_THAT(frame, testing::Each(0));
}

TEST(NumberText, TextForm) {
    EXPECT_EQ(formatValueText(1500), "1.5\\EE+3");
    EXPECT_EQ(formatValueText(-0.25), "-2.5\\EE-1");
    EXPECT_EQ(formatValueText(10), "1\\EE+1");
    EXPECT_EQ(formatValueText(7), "7");
    EXPECT_EQ(formatValueText(0), "0");
    EXPECT_EQ(formatValueText(std::numeric_limits<double>::infinity()), "");
}

TEST(NumberText, ReadsDecimalsAndNothingElse) {
    EXPECT_EQ(parseValueText("1.5\\EE+3"), 1500);
    EXPECT_EQ(parseValueText(" +12.25 "), 12.25);
    EXPECT_EQ(parseValueText("-2\\EE-1"), -0.2);
    for (const char *text :
         {"", " ", "abc", "1,5", "0x10", "inf", "nan", "1\\EE", "1\\E", "1\\EE+400", "1e400", "+-1", "\\EE+3"})
        EXPECT_EQ(parseValueText(text), std::nullopt) << text;
}

TEST(NumberText, NibblesBeyondNineCountAsTheyStand) {
    Frame frame = frameOf(1);
    frame[5] = 0x3F;
    frame[13] = 0x72;
    EXPECT_DOUBLE_EQ(decodeValue(frame), 15);
}

}  // namespace
}  // namespace numalink
