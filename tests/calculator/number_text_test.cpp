// What no text of a file comes to. Whole frames, and numbers on their way to text and back, are those of the cases in
// tests/exchange/cases.
#include "calculator/number_text.h"

#include <gmock/gmock.h>

#include <limits>

namespace numalink {

TEST(NumberText, WhatAFrameCannotHoldIsRefusedUntouched) {
    std::array<std::uint8_t, valueFrameSize> frame{};
    for (const double value : {1e100, -1e-100, std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::denorm_min()})
        EXPECT_FALSE(encodeValue(frame, 1, 1, value)) << value;
    EXPECT_THAT(frame, testing::Each(0));
    EXPECT_EQ(formatValueText(std::numeric_limits<double>::infinity()), "");
    EXPECT_EQ(parseValueText(""), std::nullopt);
    ASSERT_TRUE(encodeValue(frame, 258, 772, 0));
    EXPECT_THAT(frame, testing::ElementsAre(0x3A, 1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0));
    frame[5] = 0x3F;
    frame[13] = 0x72;
    EXPECT_DOUBLE_EQ(decodeValue(frame), 15) << "digits beyond nine count as they stand";
}

}  // namespace numalink
