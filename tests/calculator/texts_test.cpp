// Codes to Unicode and back, what becomes of characters without a code, and numbers that no frame holds. Whole frames,
// and numbers on their way to text and back, are those of the cases in tests/exchange/cases.
#include "calculator/charset.h"
#include "platform/letter_case.h"

#include <gmock/gmock.h>

#include <limits>

#include "calculator/number_text.h"

namespace numalink {
namespace {

TEST(Charset, EveryCodeSurvivesUtf8) {
    std::string all;
    for (int code = 0; code < 256; code++) all += static_cast<char>(code);
    int missing = -1;
    EXPECT_EQ(calculatorFromUtf8(utf8FromCalculator(all), &missing), all);
    EXPECT_EQ(missing, 0);
    EXPECT_EQ(utf8FromCalculator("A\xDE\xCE"), "A→θ");
}

TEST(Charset, AccentsFallAndTheRestIsCounted) {
    int missing = 0;
    EXPECT_EQ(calculatorFromUtf8("Übung é Łódź ﬁ €", &missing), "Ubung e Lodz ? ?");
    EXPECT_EQ(missing, 2);
    EXPECT_EQ(calculatorFromUtf8("e\u0301t", &missing), "et") << "the form that some file systems give";
    EXPECT_EQ(missing, 0);
}

TEST(Charset, BrokenUtf8IsCountedByteByByte) {
    int missing = 0;
    EXPECT_EQ(calculatorFromUtf8("a\xC3", &missing), "a?");
    EXPECT_EQ(missing, 1);
    EXPECT_EQ(calculatorFromUtf8("\xC0\xAF\xED\xA0\x80z\xF4\x90\x80\x80", &missing), "?????z????");
    EXPECT_EQ(missing, 9);
}

TEST(Charset, NamesAreCutAndHaveNoEnd) {
    EXPECT_EQ(calculatorName(std::string(60, 'x')), std::string(52, 'x'));
    EXPECT_EQ(calculatorName("a\n␀b"), "a??b");
}

TEST(Charset, CaseFoldsLatinLettersOnly) {
    EXPECT_TRUE(equalWithoutCase("Abc[@", "aBC[@"));
    EXPECT_FALSE(equalWithoutCase("[", "{"));
    EXPECT_FALSE(equalWithoutCase("\xC1", "\xE1"));
    EXPECT_FALSE(startsWithoutCase("ab", "abc"));
}

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

// The frame of a decimal text, as text again by way of what the views and the emulator compute with.
std::string afterAFrame(const std::string &text) {
    std::array<std::uint8_t, valueFrameSize> frame{};
    const auto value = parseValueText(text);
    if (!value || !encodeValue(frame, 1, 1, *value) || decodeValue(frame) != *value) return "no value " + text;
    const std::array<std::uint8_t, valueFrameSize> first = frame;
    encodeValue(frame, 1, 1, parseValueText(formatValueText(decodeValue(frame))).value_or(0));
    return frame == first ? formatValueText(decodeValue(frame)) : "another frame " + text;
}

TEST(NumberText, WhatIsTypedIsTheNumber) {
    for (int i = 1; i < 1000000; i += i < 3000 ? 1 : 97) {
        std::string digits = std::to_string(i);
        const std::size_t exponent = digits.size() - 1;
        for (const std::size_t decimals : {0u, 1u, 2u, 5u}) {
            std::string text = digits;
            if (decimals > 0 && decimals < text.size()) text.insert(text.size() - decimals, ".");
            std::string wanted = digits.substr(0, digits.find_last_not_of('0') + 1);
            if (wanted.size() > 1) wanted.insert(1, ".");
            const std::size_t point = text.find('.');
            const std::size_t ahead = point == std::string::npos ? exponent : point - 1;
            if (ahead > 0) wanted += "\\EE+" + std::to_string(ahead);
            ASSERT_EQ(afterAFrame(text), wanted) << text;
        }
    }
    for (const char *text : {"-1.23456789012345\\EE-99", "9.99999999999999\\EE+99", "8.2\\EE-7", "-7"})
        EXPECT_EQ(afterAFrame(text), text);
    EXPECT_EQ(afterAFrame("1\\EE+100"), "no value 1\\EE+100");
    EXPECT_EQ(formatValueText(0.1 + 0.2), "3\\EE-1") << "beyond the digits of a frame";
}

}  // namespace
}  // namespace numalink
