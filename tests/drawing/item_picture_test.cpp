// Items as surfaces and files: geometry, heads that lie, the report of a backup, bitmaps. What stands in the cells of a
// matrix is told by the command line's session matrix_pictures.
#include "drawing/item_picture.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "calculator/number_text.h"
#include "drawing/backup_picture.h"
#include "drawing/bitmap_file.h"
#include "drawing/dot_text.h"
#include "drawing/matrix_picture.h"
#include "telling/texts.h"

namespace numalink {
namespace {

using testing::ElementsAre;

Bytes headOf(std::uint32_t height, std::uint32_t width) {
    Bytes head(50);
    writeBig16(head, 7, height);
    writeBig16(head, 9, width);
    return head;
}

TEST(ItemPicture, CellsOutsideOfTheTableAreLeftOut) {
    Bytes data;
    for (const auto &[row, column] : {std::pair(1u, 1u), std::pair(2u, 3u), std::pair(3u, 1u), std::pair(0u, 1u)}) {
        Bytes cell(valueFrameSize);
        ASSERT_TRUE(encodeValue(std::span(cell).first<valueFrameSize>(), row, column, row * 10.0 + column));
        data.insert(data.end(), cell.begin(), cell.end());
    }
    data.push_back(1);  // half a cell
    const MatrixValues matrix = matrixValuesOf(headOf(2, 3), data);
    EXPECT_THAT(matrix.values, ElementsAre(11, 0, 0, 0, 0, 23));
    EXPECT_EQ(pictureFault(kind::matrix, headOf(2, 3), data), PictureFault::endsEarly);
    EXPECT_EQ(pictureFault(kind::matrix, headOf(1, 1), data), PictureFault::none);
    EXPECT_EQ(pictureFault(kind::list, headOf(501, 1), data), PictureFault::tooLarge);
    EXPECT_EQ(matrixValuesOf(headOf(60000, 2), {}).rows, 500);
    EXPECT_EQ(matrixValuesOf({}, data).values.size(), 0u);
    // The value at full length has room below the narrowest table.
    EXPECT_EQ(matrixSize(matrixValuesOf(headOf(1, 1), data)).width, 132);
}

TEST(ItemPicture, PicturesAreCutAtTheirLimitAndTellWhatIsWrong) {
    Bytes head = headOf(16, 8);
    writeBig16(head, 32, 2);
    Bytes data(2 * (16 + 6), 0xFF);
    data[4] = 1;
    data[22 + 4] = 9;
    EXPECT_EQ(pictureFault(kind::picture, head, data), PictureFault::unknownColor);
    const Surface surface = itemSurface(kind::picture, head, data);
    EXPECT_EQ(surface.width, 8);
    EXPECT_EQ(dotAt(surface, 0, 0), lcdColor::orange);
    EXPECT_EQ(itemSurface(kind::picture, headOf(60000, 60000), {}).width, 1024);
    EXPECT_EQ(screenSurface(kind::picture, head, data).height, 64);
    EXPECT_EQ(dotAt(screenSurface(kind::picture, head, data), 9, 0), lcdColor::background);
}

TEST(ItemPicture, BackupsListTheirPrograms) {
    Bytes data(13 + 2 + 60);
    const auto put = [&](std::size_t at, std::string_view text, std::size_t size) {
        for (std::size_t i = 0; i < size; i++)
            data[at + i] = i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0xFF;
    };
    // The length stands 13 bytes behind the table's start, inside the padding of the first name.
    put(20, "GAME", 15);
    data[35] = 16;
    put(36, "KEY", 16);
    put(52, "B", 15);
    const std::size_t length = data.size() - 4;
    data[33] = static_cast<std::uint8_t>(length);
    data[34] = 0;
    Bytes head(50, ' ');
    std::vector<std::string> lines = backupLines(head, data);
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[7], "GAME        KEY");
    EXPECT_EQ(lines[8], "B");
    data[33] = 0;
    EXPECT_EQ(backupLines(head, data).size(), 3u);
    EXPECT_EQ(drawBackup(head, data).height, 24);
    EXPECT_EQ(backupLines({}, {}).size(), 3u);
}

TEST(ItemPicture, BitmapsAreBottomUpAndPaddedToFour) {
    Surface surface(3, 2, lcdColor::black);
    putDot(surface, 0, 1, 0x112233);
    const Bytes file = bitmapBytes(surface);
    ASSERT_EQ(file.size(), 54u + 2 * 12);
    EXPECT_EQ(readLittle32(file, 2), file.size());
    EXPECT_EQ(readLittle32(file, 34), 24u);
    EXPECT_THAT(Bytes(file.begin() + 54, file.begin() + 58), ElementsAre(0x33, 0x22, 0x11, 0));
    EXPECT_EQ(dotText(surface), "\u2588\u2588\u2588\n");
}

TEST(MatrixPicture, HasItsPickedCellAndItsBracket) {
    EXPECT_EQ(matrixCellText(-2e100), "-2e100");
    EXPECT_EQ(matrixPickedText(1.5e100), "1.5\xDF\x89\x31\x30\x30");
    const MatrixValues matrix{1, 20, std::vector<double>(20, -1.5e-7)};
    const Surface whole = matrixPart(matrix, {1, 2}, 0, 0, matrixSize(matrix));
    EXPECT_EQ(whole.width, 20 * 28 + 15);
    EXPECT_EQ(whole.height, 38);
    EXPECT_EQ(dotAt(whole, 18 + 28, 9), lcdColor::blue);  // the picked cell, inverse
    EXPECT_EQ(dotAt(whole, 18, 9), lcdColor::background);
    EXPECT_EQ(dotAt(whole, 15, 12), lcdColor::green);  // one row: the bracket begins a dot lower
    EXPECT_EQ(dotAt(whole, 15, 11), lcdColor::background);
}

TEST(ScreenCopy, PlanesLieOverEachOther) {
    Bytes data(3 * 1027);
    data[2] = 0x02;             // blue: x 127, bottom row
    data[1027 + 2] = 0x02;      // green over it
    data[2 * 1027 + 3] = 0x04;  // orange: x 126, a row higher
    Surface surface(128, 64);
    drawScreenCopy(surface, data, 3);
    EXPECT_EQ(dotAt(surface, 127, 63), lcdColor::green);
    EXPECT_EQ(dotAt(surface, 126, 62), lcdColor::orange);
    drawScreenCopy(surface, Bytes{':', 0x02}, 1);
    EXPECT_EQ(dotAt(surface, 127, 1), lcdColor::black);
    EXPECT_EQ(std::count(surface.dots.begin(), surface.dots.end(), lcdColor::background), 128 * 64 - 1);
}

}  // namespace
}  // namespace numalink
