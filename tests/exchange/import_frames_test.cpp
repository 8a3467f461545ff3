// Frame dumps and containers, built here byte by byte, whole and cut at every length.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calculator/frames.h"
#include "exchange/reader_calls.h"
#include "virtual_calculator/calculator_frames.h"

namespace numalink {
namespace {

using testing::ElementsAre;

std::string textOf(ByteView bytes) { return {bytes.begin(), bytes.end()}; }

std::string programHead(const std::string &name, std::uint32_t length, ItemKind itemKind = kind::program) {
    return textOf(*buildHeadFrame(itemKind, Family::cfx, {.imageLength = length, .name = name, .password = ""}));
}

const std::string listHead = textOf(calculator::valueItem("LT", "List 1", "", 2, 1, 0).head);
const std::string pictureHead = textOf(calculator::picture(8, 8, 1, 2, 0).head);
const std::string closing = textOf(calculator::closingFrame(false));
const std::string image = ":ABC\xFF\x12";

TEST(ImportCas, ItemsUpToTheClosingFrame) {
    const std::string screen = ":DD\x08\x08" + std::string(35, '\xFF') + std::string(10, 'x');
    const std::string dump = programHead("ONE", 6) + image + listHead + std::string(32, 'v') + screen + closing;
    const ReadResult read = readWith(readCas, dump + "rest");
    ASSERT_EQ(read.taken.size(), 3u);
    EXPECT_TRUE(read.messages.empty());
    EXPECT_EQ(decodeProgramInfo(read.taken[0].head)->name, "ONE");
    EXPECT_EQ(textOf(read.taken[0].data), image);
    EXPECT_EQ(read.taken[1].name, "List 1");
    EXPECT_EQ(read.taken[2].itemKind, kind::monochromeScreen);
    EXPECT_EQ(read.taken[2].head.size(), shortHeadFrameSize);
}

TEST(ImportCas, CutAnywhereItSaysWhereItStopped) {
    const std::string dump = programHead("ONE", 6) + image + programHead("TWO", 6) + image;
    for (std::size_t length = 1; length <= dump.size(); length++) {
        const ReadResult read = readWith(readCas, dump.substr(0, length));
        ASSERT_EQ(read.taken.size(), length / 56) << length;
        ASSERT_EQ(read.messages.size(), 1u) << "without a closing frame";
        EXPECT_THAT(read.messages[0].body, testing::EndsWith(std::to_string(length / 56 * 56) + "."));
    }
}

TEST(ImportCas, AHeadThatLies) {
    EXPECT_TRUE(readWith(readCas, programHead("ONE", 65535) + image).taken.empty());
    std::string matrix = listHead;
    matrix[7] = '\xFF';
    EXPECT_EQ(readWith(readCas, matrix + std::string(5000, 'v') + closing).messages.size(), 1u);
    const ReadResult unknown = readWith(readCas, programHead("ONE", 6) + image + ":XYZ" + std::string(60, ' '));
    EXPECT_EQ(unknown.taken.size(), 1u);
    EXPECT_EQ(unknown.messages.size(), 1u);
}

// One item as it lies in a container, ahead of the scrambling: data without ':' and checksum of each frame.
std::string contained(const std::string &head, const std::string &data) {
    const std::string start =
        std::string("\2\0\1\0", 4) + std::string(6, 'p') + '\3' + "abc" + "\x83\x80" + std::string(47, 'q');
    return start + std::string("\1\0\1\0zz", 6) + head.substr(1, 48) + data;
}

std::string container(const std::string &items) {
    std::string file = std::string(866, 'f') + items + std::string(40, 'e');
    for (char &byte : file) byte = static_cast<char>(byte ^ 0xE7);
    file[0] = '2';
    file[1] = '0';
    return file;
}

TEST(ImportFxi, EveryKindAndWhatFollowsIt) {
    const std::string gap(8, '-');
    const std::string program = contained(programHead("ONE", 6), "ABC\xFF") + gap;
    const std::string memory = contained(programHead("FMEM", 6, kind::functionMemory), "ABC\xFF") + gap;
    const std::string list = contained(listHead, std::string(14, 'a') + std::string(14, 'b'));
    const std::string picture = contained(pictureHead, std::string(24, 'x'));
    const std::string graph = textOf(calculator::memory("GM", "GMEM", 10, 0).head);
    const ReadResult read =
        readWith(readFxi, container(memory + list + picture + contained(graph, std::string(8, 'g')) + gap + program));
    std::vector<ItemKind> kinds;
    for (const ImportedItem &item : read.taken) kinds.push_back(item.itemKind);
    EXPECT_THAT(kinds, ElementsAre(kind::functionMemory, kind::list, kind::picture, kind::graphMemory, kind::program));
    EXPECT_TRUE(read.messages.empty());
    ASSERT_EQ(read.taken.size(), 5u);
    EXPECT_TRUE(frameIsGood(read.taken[0].data));
    EXPECT_EQ(textOf(read.taken[0].data).substr(0, 5), ":ABC\xFF");
    EXPECT_EQ(read.taken[1].data.size(), 32u);
    EXPECT_EQ(read.taken[1].data[16], ':');
    EXPECT_EQ(read.taken[2].data.size(), 28u);
    EXPECT_TRUE(frameIsGood(read.taken[3].head));
}

TEST(ImportFxi, FaultsAreTold) {
    std::string lying = contained(programHead("ONE", 1), "");
    EXPECT_EQ(readWith(readFxi, container(lying)).messages.size(), 1u) << "a frame of one byte";
    lying =
        contained(std::string(pictureHead).replace(7, 4, "\xFF\xFF\xFF\xFF").replace(32, 4, "\xFF\xFF\xFF\xFF"), "");
    EXPECT_EQ(readWith(readFxi, container(lying)).messages.size(), 1u);
    EXPECT_EQ(readWith(readFxi, container(std::string("\2\0\1\0", 4) + std::string(50, 'n'))).messages.size(), 1u);
    EXPECT_EQ(readWith(readFxi, container(contained(":XYZ" + std::string(46, ' '), "abc"))).messages.size(), 1u);
}

}  // namespace
}  // namespace numalink
