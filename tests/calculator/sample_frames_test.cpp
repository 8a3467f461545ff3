// The sample dumps hold to the frames' rules: every head and data frame sums up, and the closing frame ends the file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "calculator/frames.h"
#include "calculator/number_text.h"

namespace numalink {
namespace {

using testing::ElementsAre;

Bytes readSample(const std::string &name) {
    std::ifstream input(NUMALINK_SAMPLES "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

// Length of the frames that the data of an item consist of.
std::uint64_t innerFrameLength(ItemKind itemKind, ByteView head) {
    if (itemKind == kind::picture) return picturePlaneLength(head);
    return itemKind == kind::matrix || itemKind == kind::list ? valueFrameSize : frameDataLength(head);
}

// The names of the items of a dump, in order; tests each frame on the way.
std::vector<std::string> namesOfDump(ByteView dump) {
    std::vector<std::string> names;
    std::size_t place = 0;
    while (place + headFrameSize < dump.size()) {
        const ByteView head = dump.subspan(place, headFrameSize);
        const ItemKind itemKind = classifyFrame(head.subspan(1));
        names.push_back(copyFrameName(head.subspan(frameNameOffset, frameNameSize)));
        EXPECT_TRUE(frameIsGood(head)) << names.back();
        if (const auto info = infoFromHeadFrame(head)) {
            const auto built = buildHeadFrame(itemKind, Family::cfx, *info);
            EXPECT_TRUE(built && std::equal(built->begin(), built->end(), head.begin(), head.end())) << names.back();
        }
        const std::uint64_t length = frameDataLength(head), inner = innerFrameLength(itemKind, head);
        place += headFrameSize;
        if (inner == 0 || length % inner != 0 || length > dump.size() - place) break;
        for (const std::size_t end = place + length; place < end; place += inner)
            EXPECT_TRUE(dump[place] == ':' && frameIsGood(dump.subspan(place, inner))) << names.back();
    }
    const auto closing = buildHeadFrame(kind::endOfTransmission, Family::cfx, {});
    const ByteView rest = dump.subspan(place);
    EXPECT_TRUE(closing && std::equal(closing->begin(), closing->end(), rest.begin(), rest.end()));
    return names;
}

TEST(SampleFrames, DumpsAreWholeAndSummedUp) {
    EXPECT_THAT(namesOfDump(readSample("plots.cas")),
                ElementsAre("f1", "FPLOT", "LISSAJOU", "MANDEL", "RINGS", "ROSE", "SHOW", "SIERPIN", "STRINGS",
                            "Picture1", "Picture2"));
    EXPECT_THAT(namesOfDump(readSample("values.cas")),
                ElementsAre("Mat A", "Mat B", "Mat S", "List 1", "List 2", "List 3"));
}

}  // namespace
}  // namespace numalink
