// The dot fonts: loading from good and damaged files, and where which dots go.
#include "drawing/dot_fonts.h"

#include <gtest/gtest.h>

#include "support/scratch_folder.h"
#include "support/ui_recorder.h"

namespace numalink {
namespace {

constexpr Color ink = 1, paper = 2, old = 3;

// "#" foreground, "." background, " " what was there before; a line a row.
std::string picture(const Surface &surface) {
    std::string text;
    for (int y = 0; y < surface.height; y++) {
        for (int x = 0; x < surface.width; x++)
            text += dotAt(surface, x, y) == ink ? '#' : dotAt(surface, x, y) == paper ? '.' : ' ';
        text += '\n';
    }
    return text;
}

// A small font of records of one width, every dot in the foreground, cut to size.
std::string solidSmallFont(int width, std::size_t size) {
    std::string file;
    for (int character = 0; character < 256; character++)
        file += static_cast<char>(width) + std::string(static_cast<std::size_t>(width) * 5, '\0');
    file.resize(size, '\7');
    return file;
}

ByteView view(const std::string &text) { return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}; }

struct FontFiles : testing::Test {
    std::string boxAfter(bool (*load)(), bool expected) const {
        uiRecord.boxes.clear();
        EXPECT_EQ(load(), expected);
        if (uiRecord.boxes.empty()) return "";
        EXPECT_EQ(uiRecord.boxes.size(), 1u);
        EXPECT_EQ(uiRecord.boxes[0].title, "Numalink Error");
        EXPECT_EQ(uiRecord.boxes[0].icon, BoxIcon::warning);
        return uiRecord.boxes[0].body;
    }

    EmptyProgramFolder folder;
    RecordedUi ui;
};

TEST_F(FontFiles, TellsAFontThatIsMissingOrOfAnotherLength) {
    EXPECT_EQ(boxAfter(loadLargeFont, false), "Cannot find large font file");
    folder.write("large.cft", std::string(8960, '\0'));
    EXPECT_EQ(boxAfter(loadLargeFont, true), "");
    for (const std::size_t size : {std::size_t{0}, std::size_t{8959}, std::size_t{8961}, std::size_t{2} << 20}) {
        folder.write("large.cft", std::string(size, '\1'));
        EXPECT_EQ(boxAfter(loadLargeFont, false), "Large Font file is corrupted") << size;
    }
    EXPECT_EQ(boxAfter(loadSmallFont, false), "Cannot find small font file");
    const std::size_t whole = 256 * 16;
    folder.write("small.cft", solidSmallFont(3, whole + 3));
    EXPECT_EQ(boxAfter(loadSmallFont, true), "");
    for (const std::size_t size : {std::size_t{0}, whole - 1, whole - 16}) {
        folder.write("small.cft", solidSmallFont(3, size));
        EXPECT_EQ(boxAfter(loadSmallFont, false), "Small Font file is corrupted") << size;
    }
    folder.write("small.cft", solidSmallFont(6, 256 * 31));
    EXPECT_EQ(boxAfter(loadSmallFont, false), "Small Font file is corrupted");
}

TEST_F(FontFiles, KeepsWhatADamagedFileHasAndNothingOfAnEarlierOne) {
    setSmallFont(view(solidSmallFont(5, 256 * 26)));
    EXPECT_FALSE(setSmallFont(view(solidSmallFont(2, 66 * 11))));
    Surface surface(4, 1, old);
    EXPECT_EQ(drawSmallChar(surface, 0, 0, 65, ink, paper, true), 3);
    EXPECT_EQ(drawSmallChar(surface, 3, 0, 66, ink, paper, true), 1);
    EXPECT_EQ(picture(surface), "##..\n");

    setLargeFont(view(std::string(8960, '\1')));
    EXPECT_FALSE(setLargeFont(view(std::string(35 * 65 + 7, '\1'))));
    Surface large(5, 1, old);
    drawLargeChar(large, 0, 0, 65, ink, paper);
    EXPECT_EQ(picture(large), "#....\n");
}

TEST(DotFonts, ReadsDotsColumnByColumnInOppositeSenses) {
    std::string largeFile(8960, '\0');
    largeFile[35 * 0xC8 + 7 * 1 + 3] = '\1';
    largeFile[35 * 0xC8 + 7 * 4 + 6] = '\5';
    ASSERT_TRUE(setLargeFont(view(largeFile)));
    Surface large(7, 7, old);
    drawLargeChar(large, 0, 0, 0xC8, ink, paper);
    EXPECT_EQ(picture(large), ".....  \n.....  \n.....  \n.#...  \n.....  \n.....  \n....#  \n");

    std::string smallFile = solidSmallFont(2, 256 * 11);
    smallFile[11 * 0xC8 + 1 + 5 * 1 + 3] = '\1';
    ASSERT_TRUE(setSmallFont(view(smallFile)));
    Surface small(4, 5, old);
    EXPECT_EQ(drawSmallChar(small, 0, 0, 0xC8, ink, paper, false), 3);
    EXPECT_EQ(picture(small), "##  \n##  \n##  \n#.  \n##  \n");
}

TEST(DotFonts, PutsAGapAfterEachSmallCharacterButTheLast) {
    std::string file = solidSmallFont(2, 256 * 11);
    file = file.substr(0, 11 * 'b') + '\0' + file.substr(11 * 'b' + 11);  // "b" has no glyph
    ASSERT_TRUE(setSmallFont(view(file)));
    Surface surface(10, 1, old);
    drawSmallText(surface, 1, 0, "abc", ink, paper);
    EXPECT_EQ(picture(surface), " ##..##   \n");
    surface = Surface(4, 1, old);
    drawSmallText(surface, 0, 0, std::string_view("a\0a", 3), ink, paper);
    EXPECT_EQ(picture(surface), "##  \n");
}

TEST(DotFonts, EndsDigitsTwoDotsLeftOfTheRightEdgeGiven) {
    Surface surface(17, 5, old);
    drawDigitText(surface, 17, 0, "-x4e", ink);
    EXPECT_EQ(picture(surface),
              "         # # ### \n"
              "         # # #   \n"
              " ###     # # ### \n"
              "         ### #   \n"
              "           # ### \n");
}

TEST(DotFonts, DropsWhatLiesOutsideTheSurface) {
    setLargeFont(view(std::string(8960, '\1')));
    Surface surface(3, 3, old);
    drawLargeText(surface, -10, -5, "abc", ink, paper);
    EXPECT_EQ(picture(surface), "# #\n# #\n   \n");
}

}  // namespace
}  // namespace numalink
