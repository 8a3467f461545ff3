// Drawing on a surface, as pictures of "." and "#".
#include "platform/surface.h"

#include <gtest/gtest.h>

#include <string>

namespace numalink {
namespace {

std::string picture(const Surface &surface) {
    std::string rows;
    for (int y = 0; y < surface.height; y++, rows += '\n')
        for (int x = 0; x < surface.width; x++) rows += dotAt(surface, x, y) == lcdColor::black ? '#' : '.';
    return rows;
}

TEST(Surface, LinesLeaveOutTheirLastDotAndGoAnyWay) {
    Surface surface(7, 3);
    drawLine(surface, 0, 0, 6, 2, lcdColor::black);
    EXPECT_EQ(picture(surface), "##.....\n..###..\n.....#.\n");
    Surface back(5, 3);
    drawLine(back, 4, 1, 1, 1, lcdColor::black);
    drawLine(back, 2, 2, 2, 2, lcdColor::black);
    EXPECT_EQ(picture(back), ".....\n..###\n.....\n");
}

TEST(Surface, WhatLiesOutsideIsDropped) {
    Surface surface(4, 2);
    putDot(surface, -1, 0, lcdColor::black);
    putDot(surface, 4, 1, lcdColor::black);
    EXPECT_EQ(dotAt(surface, 4, 1), lcdColor::background);
    fillRectangle(surface, -5, -5, 2, 1, lcdColor::black);
    fillRectangle(surface, 3, 1, 99, 99, lcdColor::black);
    fillRectangle(surface, 3, 0, 1, 2, lcdColor::black);
    EXPECT_EQ(picture(surface), "##..\n...#\n");
    Surface target(3, 2);
    copySurface(target, -1, 1, surface);
    EXPECT_EQ(picture(target), "...\n#..\n");
    EXPECT_TRUE(Surface(-3, 4).dots.empty());
}

}  // namespace
}  // namespace numalink
