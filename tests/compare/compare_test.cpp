// What two sequences share, and two programs side by side: same, changed, moved, taken over.
#include <gmock/gmock.h>

#include <chrono>
#include <random>

#include "compare/program_compare.h"
#include "compare/sequence_diff.h"
#include "text/token_table.h"

namespace numalink {
namespace {

using testing::ElementsAre;

using Numbers = std::vector<std::uint32_t>;

std::size_t sharedCount(const Numbers &left, const Numbers &right) {
    std::size_t count = 0, x = 0, y = 0;
    for (const CommonStretch &stretch : commonStretches(left, right)) {
        EXPECT_GE(stretch.left, x);
        EXPECT_GE(stretch.right, y);
        for (std::size_t i = 0; i < stretch.count; i++) EXPECT_EQ(left[stretch.left + i], right[stretch.right + i]);
        x = stretch.left + stretch.count;
        y = stretch.right + stretch.count;
        count += stretch.count;
    }
    EXPECT_LE(x, left.size());
    EXPECT_LE(y, right.size());
    return count;
}

// The longest that can be shared, by the plain table.
std::size_t mostShared(const Numbers &left, const Numbers &right) {
    std::vector<std::size_t> row(right.size() + 1);
    for (const std::uint32_t element : left) {
        std::size_t corner = 0;
        for (std::size_t j = 0; j < right.size(); j++) {
            const std::size_t above = row[j + 1];
            row[j + 1] = element == right[j] ? corner + 1 : std::max(above, row[j]);
            corner = above;
        }
    }
    return row.back();
}

struct Dice {
    std::mt19937 source{7};
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(source()) % limit; }
};

TEST(SequenceDiff, FindsTheMostThatIsShared) {
    Dice dice;
    for (int i = 0; i < 3000; i++) {
        const std::uint32_t letters = 2 + dice.below(6);
        Numbers left(dice.below(24)), right(dice.below(24));
        for (Numbers *side : {&left, &right})
            for (std::uint32_t &element : *side) element = dice.below(letters);
        ASSERT_EQ(sharedCount(left, right), mostShared(left, right)) << i;
    }
}

TEST(SequenceDiff, IsBoundedWhereNothingFits) {
    Dice dice;
    Numbers left(70000), right(70000);
    for (Numbers *side : {&left, &right})
        for (std::uint32_t &element : *side) element = dice.below(50);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_GT(sharedCount(left, right), 10000u);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

Bytes imageOf(std::string_view tokens) {
    std::string image = ":";
    image.append(tokens).append("\xFF");
    image.push_back('\x00');
    return {image.begin(), image.end()};
}

std::string shapeOf(const ProgramComparison &comparison) {
    std::string shape;
    for (const CompareRow &row : comparison.rows)
        shape += row.moved >= 0 ? (row.left >= 0 ? '<' : '>') : "=*-+"[static_cast<std::size_t>(row.kind)];
    return shape;
}

struct ProgramCompare : testing::Test {
    void SetUp() override { ASSERT_TRUE(tokenTableLoad()); }
};

TEST_F(ProgramCompare, TellsRowsByWhatHasBecomeOfThem) {
    const auto shape = [](std::string_view left, std::string_view right) {
        return shapeOf(comparePrograms(imageOf(left), imageOf(right)));
    };
    EXPECT_EQ(shape("A\rB\rC", "A\rB\rC"), "===");
    EXPECT_EQ(shape("A\rB\rC", "A\rC\rD"), "=-=+");
    EXPECT_EQ(shape("1+2+3\rB", "1+2+4\rB"), "*=");
    EXPECT_EQ(shape("1+2+3\rB", "\"XYZ\"\rB"), "-+=") << "nothing alike is no edit";
    EXPECT_EQ(shape("1+2+3\rB", "\"X+Z\"\rB"), "-+=") << "nor a sign that is alike";
    EXPECT_EQ(shape("ABCD+1\rABCD+2\rX\rY\rZ\rW", "X\rY\rZ\rW\rABCD+1\rABCD+2"), "<<====>>");
    EXPECT_EQ(shape("A\rX\rY", "X\rY\rA"), "-==+") << "a letter alone hasn't moved";
    EXPECT_EQ(shape("A+B or C",
                    "A+B\xAA"
                    "C"),
              "*")
        << "letters that show as a command are others";
    EXPECT_EQ(shape("A\x0C"
                    "B",
                    "A\rB"),
              "*=")
        << "the display command is a part of its line";
}

TEST_F(ProgramCompare, MarksTheTokensThatDiffer) {
    const auto comparison = comparePrograms(imageOf("A+12\xAA"
                                                    "B"),
                                            imageOf("A+92\xAA"
                                                    "BC"));
    ASSERT_EQ(comparison.rows.size(), 1u);
    EXPECT_THAT(comparison.rows[0].leftMarks, ElementsAre(MarkedText{2, 1}));
    const ViewLine &right = comparison.right[0];
    EXPECT_THAT(comparison.rows[0].rightMarks, ElementsAre(MarkedText{2, 1}, MarkedText{right.text.size() - 1, 1}));
}

// Taking every difference over, one at a time, makes the one program the other, to the byte.
TEST_F(ProgramCompare, TakesOverOneDifferenceAtATime) {
    const Bytes left = imageOf(
        "A\rB+1\r\xF7\x01then\rC\rD\x0C"
        "E");
    const Bytes right = imageOf("B+2\r\xF7\x01then\rX\rC\rD\rE\rF");
    for (const CompareSide into : {CompareSide::left, CompareSide::right}) {
        Bytes sides[] = {left, right};
        Bytes &changing = sides[into == CompareSide::left ? 0 : 1];
        const ByteView wanted = into == CompareSide::left ? right : left;
        for (int steps = 0; steps < 10; steps++) {
            const auto comparison = comparePrograms(sides[0], sides[1]);
            if (comparison.differences.empty()) break;
            Bytes image;
            ASSERT_TRUE(takeOver(comparison, 0, into, image).empty());
            const auto after = comparePrograms(into == CompareSide::left ? image : sides[0],
                                               into == CompareSide::right ? image : sides[1]);
            EXPECT_EQ(after.differences.size() + 1, comparison.differences.size());
            changing = image;
        }
        EXPECT_TRUE(std::equal(wanted.begin(), wanted.end() - 1, changing.begin(), changing.end() - 1));
    }
}

}  // namespace
}  // namespace numalink
