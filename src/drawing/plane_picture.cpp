// Planes of dots in strips of eight, from right to left, each from bottom to top.
#include "drawing/plane_picture.h"

#include <algorithm>
#include <optional>

#include "calculator/frames.h"
#include "telling/tell_user.h"

namespace numalink {

namespace {

constexpr int screenWidth = 128, screenHeight = 64;

std::optional<Color> planeColor(std::uint8_t code) {
    switch (code) {
        case 1:
            return lcdColor::orange;
        case 2:
            return lcdColor::blue;
        case 3:
            return lcdColor::green;
        case 4:
            return 0xC89632;
        default:
            return std::nullopt;
    }
}

// right is the x of the dot of bit 0 in the first strip; yOfRow tells where a row lies.
template <typename RowPlace>
void drawStrips(Surface &surface, ByteView dots, int right, int height, Color color, RowPlace yOfRow) {
    for (std::size_t i = 0; i < dots.size(); i++) {
        if (dots[i] == 0) continue;
        const int strip = static_cast<int>(i / static_cast<std::size_t>(height));
        const int row = static_cast<int>(i % static_cast<std::size_t>(height));
        for (int bit = 0; bit < 8; bit++) {
            if (dots[i] >> bit & 1) putDot(surface, right - 8 * strip - bit, yOfRow(row), color);
        }
    }
}

ByteView reachable(ByteView data, std::size_t from, std::size_t count) {
    return from >= data.size() ? ByteView() : data.subspan(from, std::min(count, data.size() - from));
}

}  // namespace

PictureSize pictureSize(ByteView head) {
    if (head.size() < pictureHeadSize) return {};
    return {readBig16(head, frameColumnsOffset), readBig16(head, frameRowsOffset)};
}

void drawPicture(Surface &surface, ByteView head, ByteView data) {
    const auto [width, height] = pictureSize(head);
    if (width == 0 || height == 0) return;
    fillRectangle(surface, 0, 0, width, height, lcdColor::background);
    if (readBig16(head, frameSheetsOffset) > 1) tellUser(Text::pictureSheets);
    const std::size_t planeSize = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) / 8;
    for (std::size_t plane = 0; plane < readBig16(head, frameColorsOffset); plane++) {
        const std::size_t start = plane * (planeSize + planeExtra);
        if (start + planeDotsOffset > data.size()) return;
        const auto color = planeColor(data[start + planeColorOffset]);
        if (!color) continue;
        drawStrips(surface, reachable(data, start + planeDotsOffset, planeSize), width - 1, height, *color,
                   [bottom = height - 1](int row) { return bottom - row; });
    }
}

void drawScreenCopy(Surface &surface, ByteView data, int planes) {
    constexpr Color colors[] = {lcdColor::blue, lcdColor::green, lcdColor::orange};
    fillRectangle(surface, 0, 0, screenWidth, screenHeight, lcdColor::background);
    const bool isColored = planes == 3;
    for (int plane = 0; plane < (isColored ? 3 : 1); plane++) {
        const std::size_t start = static_cast<std::size_t>(plane) * screenPlaneStep + (isColored ? 2 : 1);
        drawStrips(surface, reachable(data, start, screenPlaneSize), screenWidth, screenHeight,
                   isColored ? colors[plane] : lcdColor::black,
                   [&](int row) { return isColored ? screenHeight - row - 1 : row + 1; });
    }
}

}  // namespace numalink
