// The sample dumps hold to the frames' rules as the calculator of the tests knows them: every head and data frame sums
// up, the closing frame ends the file, and our own head of a program is the one that stands there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "calculator/frames.h"
#include "virtual_calculator/calculator_frames.h"

namespace numalink {
namespace {

using testing::ElementsAre;

// The names of the items of a dump, in order; tests each frame on the way.
std::vector<std::string> namesOfDump(const std::string &name) {
    std::ifstream input(NUMALINK_SAMPLES "/" + name, std::ios::binary);
    const Bytes dump{std::istreambuf_iterator<char>(input), {}};
    Bytes again;
    std::vector<std::string> names;
    for (const calculator::Item &item : calculator::itemsOf(dump)) {
        names.push_back(copyFrameName(ByteView(item.head).subspan(frameNameOffset, frameNameSize)));
        EXPECT_TRUE(calculator::isGood(item)) << names.back();
        const auto info = infoFromHeadFrame(item.head);
        const ItemKind itemKind = classifyFrame(ByteView(item.head).subspan(1));
        EXPECT_TRUE(!info || buildHeadFrame(itemKind, Family::cfx, *info) == item.head) << names.back();
        again.insert(again.end(), item.head.begin(), item.head.end());
        again.insert(again.end(), item.data.begin(), item.data.end());
    }
    const Bytes closing = calculator::closingFrame(false);
    again.insert(again.end(), closing.begin(), closing.end());
    EXPECT_EQ(again, dump);
    return names;
}

TEST(SampleFrames, DumpsAreWholeAndSummedUp) {
    EXPECT_THAT(namesOfDump("plots.cas"), ElementsAre("f1", "FPLOT", "LISSAJOU", "MANDEL", "RINGS", "ROSE", "SHOW",
                                                      "SIERPIN", "STRINGS", "Picture1", "Picture2"));
    EXPECT_THAT(namesOfDump("values.cas"), ElementsAre("Mat A", "Mat B", "Mat S", "List 1", "List 2", "List 3"));
}

}  // namespace
}  // namespace numalink
