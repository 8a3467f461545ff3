// The reference as the program reads it; what its rows say is checked by tools/make_reference.py and test_emulator.
#include "language/reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "telling/language_table.h"
#include "text/token_table.h"

namespace numalink {
namespace {

TEST(Reference, EveryTokenOfTheTableHasItsRow) {
    ASSERT_TRUE(tokenTableLoad());
    for (std::size_t i = 0; i < tokenCount(); i++) {
        const TokenRecord &record = tokenRecord(i);
        const Bytes bytes = {record.byte1, record.byte2};
        const TokenCode code = tokenCodeOf(ByteView(bytes).first(record.length));
        EXPECT_EQ(bytesOfToken(code), Bytes(bytes.begin(), bytes.begin() + record.length));
        const ReferenceRow *row = referenceOf(code);
        ASSERT_TRUE(row) << code;
        EXPECT_FALSE(row->syntax.empty() || row->keys.empty()) << code;
        EXPECT_TRUE(std::ranges::count(referenceTopics(), row->topic)) << code;
    }
    EXPECT_FALSE(referenceOf(0xF7FF));
}

TEST(Reference, SpeaksTheLanguageOfTheProgram) {
    const ReferenceRow &row = *referenceOf(0xF703);
    EXPECT_EQ(row.name, "IfEnd");
    EXPECT_EQ(row.state, ReferenceState::asOnCalculator);
    EXPECT_EQ(row.gives, "A=0; B=9");
    EXPECT_EQ(referenceMeaning(row).substr(0, 10), "Ends an If");
    const ReferenceRow &remarked = *referenceOf(0xF70D);
    EXPECT_EQ(referenceRemark(remarked).substr(0, 16), "Ends the program");
    for (const auto &[language, start] : {std::pair("Deutsch", "Beendet"), std::pair("Nederlands", "Be\xC3\xAB"),
                                          std::pair("Fran\xC3\xA7"
                                                    "ais",
                                                    "Termine")}) {
        languageLoad(language, "English");
        EXPECT_TRUE(referenceMeaning(row).starts_with(start)) << referenceMeaning(row);
        EXPECT_EQ(referenceRemark(remarked).substr(0, 3), std::string_view(start).substr(0, 3)) << "both end something";
        EXPECT_TRUE(referenceRemark(row).empty());
    }
    EXPECT_EQ(referenceKeys(*referenceOf(0x00)), "absent des touches CFX");
    languageLoad("English", "English");
    EXPECT_EQ(referenceKeys(*referenceOf(0x00)), referenceOf(0x00)->keys);
}

}  // namespace
}  // namespace numalink
