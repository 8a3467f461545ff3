// The sample dumps hold to the frames' rules as the calculator of the tests knows them: every head and data frame sums
// up, and the closing frame ends the file.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "platform/bytes.h"
#include "virtual_calculator/calculator_frames.h"

namespace numalink {
namespace {

TEST(SampleFrames, DumpsAreWholeAndSummedUp) {
    for (const auto &[name, count] : {std::pair("plots.cas", 11u), {"values.cas", 6u}}) {
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
