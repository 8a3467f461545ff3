// Codes to Unicode and back, and what becomes of characters without a code.
#include "calculator/charset.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace numalink
