// Texts of matrix cells, the picked value, and screen copies.
#include <gtest/gtest.h>

#include <algorithm>

#include "drawing/matrix_picture.h"
#include "drawing/plane_picture.h"

namespace numalink {

TEST(MatrixPicture, CellsHaveSixCharactersWithTheirExponent) {
    EXPECT_EQ(matrixCellText(0), "0");
    EXPECT_EQ(matrixCellText(-12.5), "-12.5");
    EXPECT_EQ(matrixCellText(0.05), "0.05");
    EXPECT_EQ(matrixCellText(123456), "123456");
    EXPECT_EQ(matrixCellText(-123456), "-12345");
    EXPECT_EQ(matrixCellText(1.5e12), "1.5e12");
    EXPECT_EQ(matrixCellText(1.23456e12), "1.2e12");
    EXPECT_EQ(matrixCellText(1.23456e7), "1.23e7");
    EXPECT_EQ(matrixCellText(1.23456e-12), "1.e-12");
    EXPECT_EQ(matrixCellText(1.23456e-7), "1.2e-7");
}

TEST(MatrixPicture, ThePickedValueHasFifteenDigitsInCalculatorCodes) {
    EXPECT_EQ(matrixPickedText(-0.25),
              "\x87"
              "0.25");
    EXPECT_EQ(matrixPickedText(-1.5e-8),
              "\x87"
              "1.5\xDF\x87"
              "8");
    EXPECT_EQ(matrixPickedText(1.5e100),
              "1.5\xDF\x89"
              "100");
    EXPECT_EQ(matrixPickedText(123456789012345.0), "123456789012345");
}

TEST(MatrixPicture, TheTableGrowsByItsColumnsAndRows) {
    EXPECT_EQ(matrixPictureWidth(3), 99);
    EXPECT_EQ(matrixPictureHeight(3), 54);
    const double values[] = {1, 2};
    Surface surface(matrixPictureWidth(2), matrixPictureHeight(1));
    drawMatrix(surface, {.columns = 2, .rows = 1, .values = values, .pickedColumn = 2});
    EXPECT_EQ(dotAt(surface, 18 + 28, 9), lcdColor::blue);  // the picked cell, inverse
    EXPECT_EQ(dotAt(surface, 18, 9), lcdColor::background);
    EXPECT_EQ(dotAt(surface, 15, 12), lcdColor::green);  // one row: the bracket begins a dot lower
    EXPECT_EQ(dotAt(surface, 15, 11), lcdColor::background);
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

}  // namespace numalink
